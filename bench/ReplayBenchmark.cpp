// Replays a synthetic merged log of a million records onto a new document and compares the time
// and the peak memory with the size of the same records as journal JSON.
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "model/JournalMerge.h"
#include "storage/JournalWriter.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <limits>
#include <memory>
#include <random>
#include <sys/resource.h>
#include <time.h>

namespace quillery {
namespace {

constexpr std::size_t kRecordCount = 1'000'000;
constexpr std::size_t kClientCount = 3;
constexpr std::size_t kMaxFanOut = 24;
constexpr double kSecondsTarget = 0.5;
constexpr double kBytesPerJsonByteTarget = 2.0;

// The generator's own light copy of the tree, so that every record it writes makes sense.
struct ModelNode {
    Identifier identifier;
    std::uint32_t parent;
    std::vector<std::uint32_t> children;
};

class LogGenerator {
public:
    LogGenerator()
        : m_random(20170304) {
        m_nodes.push_back({Identifier("root"), 0, {}});
        m_nodes.push_back({Identifier("deleted"), 1, {}});
    }

    // One list per client, each in time order.
    std::vector<std::vector<DocumentDiff>> generate(std::size_t count) {
        std::vector<std::vector<DocumentDiff>> journals(kClientCount);
        for (auto& journal : journals)
            journal.reserve(count / kClientCount + 1);
        const TimePoint start = std::chrono::sys_days{std::chrono::year{2017} / 3 / 4};
        for (std::size_t i = 0; i < count; ++i) {
            // Several records per second: the merge must keep equal stamps in journal order.
            TimePoint stamp = start + std::chrono::seconds(i / 4);
            journals[(i / 64) % kClientCount].push_back(makeRecord(stamp));
        }
        return journals;
    }

    // The deepest level of the generated tree and the mean level of its notes.
    std::pair<std::size_t, double> depth() const {
        std::vector<std::size_t> levels(m_nodes.size(), 0);
        std::size_t deepest = 0;
        double total = 0;
        for (std::uint32_t i = 2; i < m_nodes.size(); ++i) {
            std::size_t level = 0;
            for (std::uint32_t at = i; at > kDeletedRoot; at = m_nodes[at].parent)
                ++level;
            deepest = std::max(deepest, level);
            total += static_cast<double>(level);
        }
        return {deepest, total / static_cast<double>(m_nodes.size())};
    }

private:
    DocumentDiff makeRecord(TimePoint stamp) {
        const std::size_t roll = m_random() % 100;
        if (m_nodes.size() < 1000 || roll < 40)
            return create(stamp);
        if (roll < 75)
            return editText(stamp);
        if (roll < 85)
            if (auto diff = reorder(stamp))
                return *diff;
        if (roll < 95)
            if (auto diff = reparent(stamp, pickParent()))
                return *diff;
        if (auto diff = reparent(stamp, kDeletedRoot))
            return *diff;
        return editText(stamp);
    }

    DocumentDiff create(TimePoint stamp) {
        const std::uint32_t parent = pickParent();
        const std::uint32_t index = static_cast<std::uint32_t>(m_nodes.size());
        m_nodes.push_back({randomIdentifier(), parent, {}});
        // As read from a journal: the reader takes "identifier" out of the payload.
        PlainDictionary payload;
        payload.set("text", randomText());
        payload.set("parent", m_nodes[parent].identifier);
        insertChild(parent, index, payload);
        return DocumentDiff(stamp, m_nodes[index].identifier, std::move(payload));
    }

    DocumentDiff editText(TimePoint stamp) {
        PlainDictionary payload;
        payload.set("text", randomText());
        return DocumentDiff(stamp, m_nodes[pickNode()].identifier, std::move(payload));
    }

    std::optional<DocumentDiff> reorder(TimePoint stamp) {
        const std::uint32_t moving = pickNode();
        auto& siblings = m_nodes[m_nodes[moving].parent].children;
        if (siblings.size() < 2 || m_nodes[moving].parent == kDeletedRoot)
            return std::nullopt;
        std::erase(siblings, moving);
        const std::size_t at = m_random() % (siblings.size() + 1);
        PlainDictionary payload;
        if (at < siblings.size())
            payload.set("before", m_nodes[siblings[at]].identifier);
        else
            payload.set("after", m_nodes[siblings.back()].identifier);
        siblings.insert(siblings.begin() + static_cast<std::ptrdiff_t>(at), moving);
        return DocumentDiff(stamp, m_nodes[moving].identifier, std::move(payload));
    }

    std::optional<DocumentDiff> reparent(TimePoint stamp, std::uint32_t destination) {
        const std::uint32_t moving = pickNode();
        if (m_nodes[moving].parent == kDeletedRoot || liesWithin(destination, moving))
            return std::nullopt;
        std::erase(m_nodes[m_nodes[moving].parent].children, moving);
        m_nodes[moving].parent = destination;
        PlainDictionary payload;
        payload.set("parent", m_nodes[destination].identifier);
        insertChild(destination, moving, payload);
        return DocumentDiff(stamp, m_nodes[moving].identifier, std::move(payload));
    }

    // Appends, or a third of the time places the node before a random sibling.
    void insertChild(std::uint32_t parent, std::uint32_t child, PlainDictionary& payload) {
        auto& children = m_nodes[parent].children;
        std::size_t at = children.size();
        if (!children.empty() && parent != kDeletedRoot && m_random() % 3 == 0) {
            at = m_random() % children.size();
            payload.set("before", m_nodes[children[at]].identifier);
        }
        children.insert(children.begin() + static_cast<std::ptrdiff_t>(at), child);
    }

    bool liesWithin(std::uint32_t candidate, std::uint32_t ancestor) const {
        while (candidate > kDeletedRoot) {
            if (candidate == ancestor)
                return true;
            candidate = m_nodes[candidate].parent;
        }
        return candidate == ancestor;
    }

    // Recent nodes are favoured, which grows long chains; the fan-out stays moderate.
    std::uint32_t pickParent() {
        for (;;) {
            std::uint32_t candidate;
            if (m_nodes.size() > 64 && m_random() % 2 == 0)
                candidate = static_cast<std::uint32_t>(m_nodes.size() - 1 - m_random() % 64);
            else
                candidate = static_cast<std::uint32_t>(m_random() % m_nodes.size());
            if (candidate != kDeletedRoot && m_nodes[candidate].children.size() < kMaxFanOut)
                return candidate;
        }
    }

    std::uint32_t pickNode() {
        return static_cast<std::uint32_t>(2 + m_random() % (m_nodes.size() - 2));
    }

    Identifier randomIdentifier() {
        static constexpr char kDigits[] = "0123456789ABCDEF";
        char text[37] = "xxxxxxxx-xxxx-4xxx-8xxx-xxxxxxxxxxxx";
        for (char& c : text)
            if (c == 'x')
                c = kDigits[m_random() % 16];
        return Identifier(std::string_view(text, 36));
    }

    std::string randomText() {
        static constexpr std::string_view kWords[] = {
            "note",   "idea",     "buy",  "milk",   "call", "Anna",   "draft",
            "# Plan", "**bold**", "todo", "garden", "read", "chapter"};
        std::string text;
        const std::size_t words = 1 + m_random() % 6;
        for (std::size_t i = 0; i < words; ++i) {
            if (i > 0)
                text += ' ';
            text += kWords[m_random() % std::size(kWords)];
        }
        return text;
    }

    static constexpr std::uint32_t kDeletedRoot = 1;
    std::mt19937_64 m_random;
    std::vector<ModelNode> m_nodes;
};

// Counts the bytes of a journal without keeping them.
class CountingFile : public WritableFile {
public:
    std::error_code append(std::string_view bytes) override {
        size += bytes.size();
        return {};
    }
    std::error_code sync() override { return {}; }
    std::error_code close() override { return {}; }
    std::size_t size = 0;
};

// The bytes of the records as journals, one per client, the way a save writes them.
std::size_t journalBytes(const std::vector<std::vector<DocumentDiff>>& journals) {
    CountingFile file;
    for (const auto& journal : journals)
        JournalWriter().write(file, Identifier::makeRandom(), TimePoint{}, journal);
    return file.size;
}

double peakResidentBytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) * 1024.0; // Linux reports kilobytes
}

double threadCpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

// The fastest run counts: the machine's other work (and its neighbours' on a shared host) only
// ever slows a run down. Memory is read after the first run; later runs reuse what the first
// freed, in pieces, and would measure the allocator's fragments instead.
struct Best {
    double seconds = std::numeric_limits<double>::max();
    double cpuSeconds = std::numeric_limits<double>::max();
    double peakBytes = 0;
    std::size_t jsonBytes = 0;
};

Best g_best;

void replay(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        LogGenerator generator;
        std::vector<std::vector<DocumentDiff>> journals = generator.generate(kRecordCount);
        if (g_best.jsonBytes == 0) {
            const auto [deepest, meanDepth] = generator.depth();
            std::printf("tree: deepest level %zu, mean level %.1f\n", deepest, meanDepth);
            g_best.jsonBytes = journalBytes(journals);
        }
        std::vector<DocumentDiff> clientDiffs = journals.front();
        std::vector<DocumentDiff> merged = MergedDiffsFromArrayOfDiffs(std::move(journals));
        InMemoryPreferences preferences;
        state.ResumeTiming();

        const auto started = std::chrono::steady_clock::now();
        const double cpuStarted = threadCpuSeconds();
        auto document = std::make_unique<Document>(preferences);
        document->loadData(std::move(merged), std::move(clientDiffs));
        const double cpuSeconds = threadCpuSeconds() - cpuStarted;
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - started;

        state.PauseTiming();
        g_best.seconds = std::min(g_best.seconds, elapsed.count());
        g_best.cpuSeconds = std::min(g_best.cpuSeconds, cpuSeconds);
        if (g_best.peakBytes == 0)
            g_best.peakBytes = peakResidentBytes();
        state.counters["nodes"] = static_cast<double>(document->nodeCount());
        document.reset();
        state.ResumeTiming();
    }
}

void report() {
    const double seconds = g_best.seconds;
    const double ratio = g_best.peakBytes / static_cast<double>(g_best.jsonBytes);
    // Wall time is the target; processor time shows how much of it a busy machine took away.
    std::printf("replay of %zu records, fastest run: %.3f s wall, %.3f s processor "
                "(%.0f records/s; target < %.1f s: %s)\n",
                kRecordCount, seconds, g_best.cpuSeconds,
                static_cast<double>(kRecordCount) / seconds, kSecondsTarget,
                seconds < kSecondsTarget ? "met" : "MISSED");
    std::printf("peak RSS %.1f MB, journal JSON %.1f MB, %.2f bytes per JSON byte "
                "(target < %.1f: %s)\n",
                g_best.peakBytes / 1e6, static_cast<double>(g_best.jsonBytes) / 1e6, ratio,
                kBytesPerJsonByteTarget, ratio < kBytesPerJsonByteTarget ? "met" : "MISSED");
}

BENCHMARK(replay)->Iterations(5)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace quillery

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    quillery::report();
    return 0;
}
