// Opening a large shared notebook: 3 journals, 1,000,000 records in all (about 200 MB). Judged
// against simdjson alone parsing the same files in the same run; the target is 2.5 times that.
#include "BenchSupport.h"
#include "JournalGenerator.h"
#include "TemporaryDirectory.h"
#include "base/Diagnostics.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "storage/HeaderPictureCodec.h"
#include "storage/NotebookPackage.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <simdjson.h>

namespace quillery::bench {
namespace {

constexpr std::size_t kRecords = 1'000'000;
constexpr int kClients = 3;

struct SharedPackage {
    testing_support::TemporaryDirectory directory;
    std::filesystem::path package = directory.path() / "Shared.quillery";
    std::vector<Identifier> clients;
    std::vector<simdjson::padded_string> journals;
    std::size_t bytes = 0;

    SharedPackage() {
        const TimePoint start = std::chrono::system_clock::now() - std::chrono::hours(24 * 30);
        for (const auto& log :
             testing_support::JournalGenerator(1, testing_support::kMostlyNewNotes)
                 .generate(kRecords, kClients, start)) {
            clients.push_back(Identifier::makeRandom());
            bytes += writeJournal(package, clients.back(), log);
        }
        for (const auto& entry : std::filesystem::directory_iterator(package))
            if (entry.path().extension() == ".journal")
                journals.push_back(simdjson::padded_string::load(entry.path().string()).value());
    }
};

SharedPackage& sharedPackage() {
    static SharedPackage package;
    return package;
}

Best g_parse;
Best g_open;

void BM_SimdjsonParse(benchmark::State& state) {
    SharedPackage& shared = sharedPackage();
    simdjson::dom::parser parser;
    for (auto _ : state) {
        Stopwatch watch;
        for (const auto& journal : shared.journals) {
            auto document = parser.parse(journal);
            if (document.error()) {
                state.SkipWithError("simdjson failed");
                return;
            }
            benchmark::DoNotOptimize(document.value_unsafe());
        }
        watch.stopInto(g_parse);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * shared.bytes));
}

void BM_OpenPackage(benchmark::State& state) {
    SharedPackage& shared = sharedPackage();
    InMemoryPreferences preferences;
    preferences.setString(kClientIdentifierKey, shared.clients.front().toString());
    HeaderPictureCodec codec;
    for (auto _ : state) {
        state.PauseTiming();
        auto document = std::make_unique<Document>(preferences, &codec);
        state.ResumeTiming();
        Stopwatch watch;
        if (auto error = package::read(*document, shared.package, codec)) {
            state.SkipWithError(error->message.c_str());
            return;
        }
        watch.stopInto(g_open);
        state.PauseTiming();
        state.counters["notes"] = static_cast<double>(document->nodeCount());
        document.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * shared.bytes));
}

BENCHMARK(BM_SimdjsonParse)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
BENCHMARK(BM_OpenPackage)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

} // namespace
} // namespace quillery::bench

int main(int argc, char** argv) {
    using namespace quillery::bench;
    // Replay diagnostics would only measure the terminal.
    quillery::diagnostics::setSink([](std::string_view) {});
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    std::printf("Package: %zu journals, %zu records, %.1f MB\n", sharedPackage().journals.size(),
                kRecords, static_cast<double>(sharedPackage().bytes) / 1e6);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (g_parse.measured() && g_open.measured()) {
        std::printf("open %.0f ms / simdjson parse %.0f ms = %.2fx (target <= 2.5x)\n",
                    g_open.seconds * 1e3, g_parse.seconds * 1e3, g_open.seconds / g_parse.seconds);
        std::printf("processor time: open %.0f ms / simdjson parse %.0f ms = %.2fx\n",
                    g_open.cpuSeconds * 1e3, g_parse.cpuSeconds * 1e3,
                    g_open.cpuSeconds / g_parse.cpuSeconds);
    }
    std::printf("peak memory: %.0f MiB\n", peakMemoryMiB());
    return 0;
}
