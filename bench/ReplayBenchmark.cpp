// Replays a synthetic merged log of a million records onto a new document and compares the time
// and the peak memory with the size of the same records as journal JSON.
#include "BenchSupport.h"
#include "JournalGenerator.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "model/JournalMerge.h"
#include "storage/JournalWriter.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <memory>

namespace quillery::bench {
namespace {

constexpr std::size_t kRecordCount = 1'000'000;
constexpr std::size_t kClientCount = 3;
constexpr double kSecondsTarget = 0.5;
constexpr double kBytesPerJsonByteTarget = 2.0;

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

// The fastest run counts (see Best). Memory is read after the first run; later runs reuse what the
// first freed, in pieces, and would measure the allocator's fragments instead.
struct Figures {
    Best replay;
    double peakBytes = 0;
    std::size_t jsonBytes = 0;
};

Figures g_figures;

void replay(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        // Several records a second: the merge must keep equal stamps in journal order.
        testing_support::JournalGenerator generator(20170304, testing_support::kEveryChange);
        std::vector<std::vector<DocumentDiff>> journals = generator.generate(
            kRecordCount, kClientCount, std::chrono::sys_days{std::chrono::year{2017} / 3 / 4});
        if (g_figures.jsonBytes == 0) {
            const auto [deepest, meanDepth] = generator.depth();
            std::printf("tree: deepest level %zu, mean level %.1f\n", deepest, meanDepth);
            g_figures.jsonBytes = journalBytes(journals);
        }
        std::vector<DocumentDiff> clientDiffs = journals.front();
        std::vector<DocumentDiff> merged = MergedDiffsFromArrayOfDiffs(std::move(journals));
        InMemoryPreferences preferences;
        state.ResumeTiming();

        Stopwatch watch(CpuClock::thread);
        auto document = std::make_unique<Document>(preferences);
        document->loadData(std::move(merged), std::move(clientDiffs));
        watch.stopInto(g_figures.replay);

        state.PauseTiming();
        if (g_figures.peakBytes == 0)
            g_figures.peakBytes = peakMemoryMiB() * 1024 * 1024;
        state.counters["nodes"] = static_cast<double>(document->nodeCount());
        document.reset();
        state.ResumeTiming();
    }
}

void report() {
    const double seconds = g_figures.replay.seconds;
    const double ratio = g_figures.peakBytes / static_cast<double>(g_figures.jsonBytes);
    // Wall time is the target; processor time shows how much of it a busy machine took away.
    std::printf("replay of %zu records, fastest run: %.3f s wall, %.3f s processor "
                "(%.0f records/s; target < %.1f s: %s)\n",
                kRecordCount, seconds, g_figures.replay.cpuSeconds,
                static_cast<double>(kRecordCount) / seconds, kSecondsTarget,
                seconds < kSecondsTarget ? "met" : "MISSED");
    std::printf("peak RSS %.1f MB, journal JSON %.1f MB, %.2f bytes per JSON byte "
                "(target < %.1f: %s)\n",
                g_figures.peakBytes / 1e6, static_cast<double>(g_figures.jsonBytes) / 1e6, ratio,
                kBytesPerJsonByteTarget, ratio < kBytesPerJsonByteTarget ? "met" : "MISSED");
}

BENCHMARK(replay)->Iterations(5)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace quillery::bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    quillery::bench::report();
    return 0;
}
