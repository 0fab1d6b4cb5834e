// Saving a notebook whose own journal holds 1,000,000 records: the journal is rewritten in full.
// Judged against writing and flushing the same number of bytes with plain file calls in the same
// run; the target is 2 times that.
#include "BenchSupport.h"
#include "JournalGenerator.h"
#include "TemporaryDirectory.h"
#include "base/Diagnostics.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "storage/NotebookPackage.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace quillery::bench {
namespace {

constexpr std::size_t kRecords = 1'000'000;

struct LargeNotebook {
    testing_support::TemporaryDirectory directory;
    std::filesystem::path package = directory.path() / "Large.quillery";
    InMemoryPreferences preferences;
    std::unique_ptr<Document> document;
    std::size_t journalBytes = 0;

    LargeNotebook() {
        document = std::make_unique<Document>(preferences);
        const auto log = testing_support::JournalGenerator(7, testing_support::kMostlyNewNotes)
                             .generate(kRecords, 1, CurrentTime() - std::chrono::hours(24 * 3))
                             .front();
        document->loadData(log, log);
        if (package::saveTo(*document, package))
            throw std::runtime_error("first save failed");
        journalBytes = std::filesystem::file_size(
            package / (document->clientIdentifier().toString() + ".journal"));
    }
};

LargeNotebook& largeNotebook() {
    static LargeNotebook notebook;
    return notebook;
}

Best g_save;
Best g_plain;

void BM_SaveInPlace(benchmark::State& state) {
    LargeNotebook& notebook = largeNotebook();
    for (auto _ : state) {
        Stopwatch watch;
        if (auto error = package::saveInPlace(*notebook.document)) {
            state.SkipWithError(error->message.c_str());
            return;
        }
        watch.stopInto(g_save);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * notebook.journalBytes));
}

void BM_PlainWriteAndFlush(benchmark::State& state) {
    LargeNotebook& notebook = largeNotebook();
    std::string chunk(1 << 20, 'x');
    std::filesystem::path path = notebook.directory.path() / "plain";
    for (auto _ : state) {
        Stopwatch watch;
        int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        for (std::size_t left = notebook.journalBytes; left > 0;) {
            std::size_t size = std::min(left, chunk.size());
            if (::write(fd, chunk.data(), size) != static_cast<ssize_t>(size)) {
                state.SkipWithError("write failed");
                return;
            }
            left -= size;
        }
        ::fsync(fd);
        ::close(fd);
        watch.stopInto(g_plain);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * notebook.journalBytes));
}

BENCHMARK(BM_PlainWriteAndFlush)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
BENCHMARK(BM_SaveInPlace)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

} // namespace
} // namespace quillery::bench

int main(int argc, char** argv) {
    using namespace quillery::bench;
    quillery::diagnostics::setSink([](std::string_view) {});
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    std::printf("Journal: %zu records, %.1f MB\n", kRecords,
                static_cast<double>(largeNotebook().journalBytes) / 1e6);
    double before = peakMemoryMiB();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (g_save.measured() && g_plain.measured()) {
        std::printf("save %.0f ms / plain write+fsync %.0f ms = %.2fx (target <= 2x)\n",
                    g_save.seconds * 1e3, g_plain.seconds * 1e3, g_save.seconds / g_plain.seconds);
        std::printf("processor time: save %.0f ms / plain write+fsync %.0f ms = %.2fx\n",
                    g_save.cpuSeconds * 1e3, g_plain.cpuSeconds * 1e3,
                    g_save.cpuSeconds / g_plain.cpuSeconds);
    }
    std::printf("peak memory: %.0f MiB (%.0f MiB with the notebook loaded, before saving)\n",
                peakMemoryMiB(), before);
    return 0;
}
