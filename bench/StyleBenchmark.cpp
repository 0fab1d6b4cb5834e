// Styles a 20 MB corpus of note texts and parses the same corpus with md4c (no rendering), then
// prints both throughputs and their ratio. The styler is judged against at least half of md4c's.
#include "markdown/MarkdownStyler.h"

#include <array>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstdio>
#include <map>
#include <md4c.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t kCorpusBytes = 20'000'000;
constexpr double kTargetRatio = 0.5;

// A fixed generator, so every run and every machine styles the same corpus.
class Random {
public:
    std::size_t below(std::size_t bound) {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 7;
        m_state ^= m_state << 17;
        return static_cast<std::size_t>(m_state % bound);
    }

    template <typename T, std::size_t N>
    const T& pick(const std::array<T, N>& items) {
        return items[below(N)];
    }

private:
    std::uint64_t m_state = 0x2545F4914F6CDD1Dull;
};

constexpr std::array<std::string_view, 40> kWords = {
    "the",      "meeting", "notes",  "project", "review", "idea",   "draft", "list",
    "tomorrow", "call",    "budget", "chapter", "garden", "recipe", "flour", "and",
    "of",       "to",      "with",   "about",   "before", "after",  "check", "write",
    "café",     "naïve",   "Zürich", "résumé",  "señor",  "Ærø",    "東京",  "メモ",
    "2024",     "v1.2",    "e-mail", "it's",    "«ok»",   "—",      "🎉",     "½"};

constexpr std::array<std::string_view, 8> kTargets = {
    "https://example.org/a", "note:inbox",    "https://example.com/path?q=1",  "file:///tmp/x",
    "mailto:me@example.org", "note:projects", "https://wiki.example.net/Main", "todo"};

void appendWords(std::string& out, Random& random, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) {
            out += ' ';
        }
        out += random.pick(kWords);
    }
}

// One line of running text with the occasional span: emphasis, code, a link, a snake_case word.
void appendParagraphLine(std::string& out, Random& random) {
    const std::size_t pieces = 2 + random.below(6);
    for (std::size_t piece = 0; piece < pieces; ++piece) {
        if (piece > 0) {
            out += ' ';
        }
        switch (random.below(12)) {
        case 0:
            out += '*';
            appendWords(out, random, 1 + random.below(3));
            out += '*';
            break;
        case 1:
            out += "**";
            appendWords(out, random, 1 + random.below(2));
            out += "**";
            break;
        case 2:
            out += '`';
            out += random.below(2) == 0 ? "git status" : "make -j4";
            out += '`';
            break;
        case 3:
            out += '[';
            appendWords(out, random, 1 + random.below(2));
            out += "](";
            out += random.pick(kTargets);
            out += ')';
            break;
        case 4:
            out += "snake_case_name";
            break;
        default:
            appendWords(out, random, 2 + random.below(8));
        }
    }
}

std::string makeNote(Random& random) {
    std::string note;
    const std::size_t lines = 1 + random.below(8);
    for (std::size_t line = 0; line < lines; ++line) {
        if (line > 0) {
            note += '\n';
        }
        switch (random.below(10)) {
        case 0:
            note.append(1 + random.below(3), '#');
            note += ' ';
            appendWords(note, random, 1 + random.below(5));
            break;
        case 1:
            appendWords(note, random, 2 + random.below(3));
            note += random.below(2) == 0 ? "\n=====" : "\n-----";
            break;
        case 2:
            note += "- ";
            appendParagraphLine(note, random);
            break;
        case 3:
            break; // an empty line between paragraphs
        default:
            appendParagraphLine(note, random);
        }
    }
    return note;
}

struct Corpus {
    std::vector<std::string> notes;
    std::size_t bytes = 0;
};

const Corpus& corpus() {
    static const Corpus made = [] {
        Corpus notes;
        Random random;
        while (notes.bytes < kCorpusBytes) {
            notes.notes.push_back(makeNote(random));
            notes.bytes += notes.notes.back().size();
        }
        return notes;
    }();
    return made;
}

void styleCorpus(benchmark::State& state) {
    const Corpus& notes = corpus();
    for (auto _ : state) {
        for (const std::string& note : notes.notes) {
            quillery::MarkdownStyler styler(note);
            std::vector<quillery::StyledRun> runs = styler.attributedString();
            benchmark::DoNotOptimize(runs.data());
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * notes.bytes));
}

int ignoreBlock(MD_BLOCKTYPE, void*, void*) {
    return 0;
}

int ignoreSpan(MD_SPANTYPE, void*, void*) {
    return 0;
}

int ignoreText(MD_TEXTTYPE, const MD_CHAR*, MD_SIZE, void*) {
    return 0;
}

void parseCorpusWithMd4c(benchmark::State& state) {
    const Corpus& notes = corpus();
    MD_PARSER parser{};
    parser.flags = MD_DIALECT_COMMONMARK;
    parser.enter_block = ignoreBlock;
    parser.leave_block = ignoreBlock;
    parser.enter_span = ignoreSpan;
    parser.leave_span = ignoreSpan;
    parser.text = ignoreText;
    for (auto _ : state) {
        for (const std::string& note : notes.notes) {
            benchmark::DoNotOptimize(
                md_parse(note.data(), static_cast<MD_SIZE>(note.size()), &parser, nullptr));
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * notes.bytes));
}

BENCHMARK(styleCorpus)->Unit(benchmark::kMillisecond);
BENCHMARK(parseCorpusWithMd4c)->Unit(benchmark::kMillisecond);

// Shows the usual table, and keeps each benchmark's throughput for the comparison.
class ThroughputReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& reports) override {
        ConsoleReporter::ReportRuns(reports);
        for (const Run& run : reports) {
            // Processor time: on a shared machine it is steadier than wall time.
            if (run.run_type == Run::RT_Iteration && !run.error_occurred &&
                run.cpu_accumulated_time > 0) {
                const double seconds =
                    run.cpu_accumulated_time / static_cast<double>(run.iterations);
                m_megabytesPerSecond[run.run_name.function_name] =
                    static_cast<double>(corpus().bytes) / seconds / 1e6;
            }
        }
    }

    void printComparison() const {
        const auto styler = m_megabytesPerSecond.find("styleCorpus");
        const auto md4c = m_megabytesPerSecond.find("parseCorpusWithMd4c");
        if (styler == m_megabytesPerSecond.end() || md4c == m_megabytesPerSecond.end()) {
            return;
        }
        const double ratio = styler->second / md4c->second;
        std::printf("\ncorpus: %zu notes, %.1f MB (1 MB = 10^6 bytes)\n", corpus().notes.size(),
                    static_cast<double>(corpus().bytes) / 1e6);
        std::printf("styler: %.1f MB/s\nmd4c:   %.1f MB/s\nratio:  %.2f (target >= %.2f): %s\n",
                    styler->second, md4c->second, ratio, kTargetRatio,
                    ratio >= kTargetRatio ? "met" : "NOT met");
    }

private:
    std::map<std::string, double> m_megabytesPerSecond;
};

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    corpus(); // made once, before any timing
    ThroughputReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printComparison();
    benchmark::Shutdown();
    return 0;
}
