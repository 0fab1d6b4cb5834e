// Opening a large shared notebook: 3 journals, 1,000,000 records in all (about 200 MB). Judged
// against simdjson alone parsing the same files in the same run; the target is 2.5 times that.
#include "GeneratedJournals.h"
#include "document/Diagnostics.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "storage/HeaderPictureCodec.h"
#include "storage/NotebookPackage.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <limits>
#include <simdjson.h>

namespace quillery::bench {
namespace {

constexpr std::size_t kRecords = 1'000'000;
constexpr int kClients = 3;

struct SharedPackage {
    ScratchDirectory directory;
    std::filesystem::path package = directory.path() / "Shared.quillery";
    std::vector<Identifier> clients;
    std::vector<simdjson::padded_string> journals;
    std::size_t bytes = 0;

    SharedPackage() {
        TimePoint start = std::chrono::system_clock::now() - std::chrono::hours(24 * 30);
        for (int c = 0; c < kClients; ++c) {
            clients.push_back(Identifier::makeRandom());
            auto log = generateLog(kRecords / kClients + (c == 0 ? kRecords % kClients : 0), start,
                                   std::chrono::hours(24 * 30), static_cast<unsigned>(c + 1));
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

double g_parseSeconds = std::numeric_limits<double>::max();
double g_openSeconds = std::numeric_limits<double>::max();

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BM_SimdjsonParse(benchmark::State& state) {
    SharedPackage& shared = sharedPackage();
    simdjson::dom::parser parser;
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        for (const auto& journal : shared.journals) {
            auto document = parser.parse(journal);
            if (document.error()) {
                state.SkipWithError("simdjson failed");
                return;
            }
            benchmark::DoNotOptimize(document.value_unsafe());
        }
        g_parseSeconds = std::min(g_parseSeconds, secondsSince(start));
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
        auto start = std::chrono::steady_clock::now();
        if (auto error = package::read(*document, shared.package, codec)) {
            state.SkipWithError(error->message.c_str());
            return;
        }
        g_openSeconds = std::min(g_openSeconds, secondsSince(start));
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
    if (g_parseSeconds < std::numeric_limits<double>::max() &&
        g_openSeconds < std::numeric_limits<double>::max())
        std::printf("open %.0f ms / simdjson parse %.0f ms = %.2fx (target <= 2.5x)\n",
                    g_openSeconds * 1e3, g_parseSeconds * 1e3, g_openSeconds / g_parseSeconds);
    std::printf("peak memory: %.0f MiB\n", peakMemoryMiB());
    return 0;
}
