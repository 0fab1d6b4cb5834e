// Opening a notebook of many small journals: a note each from 5,000 and from 50,000
// installations. Ten times the journals must take about ten times as long, and 50,000 about a
// second.
#include "BenchSupport.h"
#include "TemporaryDirectory.h"
#include "base/Diagnostics.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "storage/HeaderPictureCodec.h"
#include "storage/NotebookPackage.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <fstream>
#include <map>

namespace quillery::bench {
namespace {

std::map<std::int64_t, Best> g_open;

// A package of `count` journals of one new note each, all made in the same second.
struct ManyJournals {
    testing_support::TemporaryDirectory directory;
    std::filesystem::path package = directory.path() / "Many.quillery";

    explicit ManyJournals(std::int64_t count) {
        std::filesystem::create_directory(package);
        for (std::int64_t i = 0; i < count; ++i) {
            const std::string client = Identifier::makeRandom().toString();
            std::ofstream(package / (client + ".journal"))
                << R"({"diffs": [{"timestamp": "2026-01-01T00:00:00GMT", "identifier": ")"
                << Identifier::makeRandom().toString()
                << R"(", "text": "note", "parent": "root"}]})";
        }
    }
};

void BM_OpenManyJournals(benchmark::State& state) {
    const ManyJournals many(state.range(0));
    InMemoryPreferences preferences;
    HeaderPictureCodec codec;
    for (auto _ : state) {
        auto document = std::make_unique<Document>(preferences, &codec);
        Stopwatch watch;
        if (auto error = package::read(*document, many.package, codec)) {
            state.SkipWithError(error->message.c_str());
            return;
        }
        watch.stopInto(g_open[state.range(0)]);
        state.counters["notes"] = static_cast<double>(document->nodeCount());
    }
}

BENCHMARK(BM_OpenManyJournals)
    ->Arg(5'000)
    ->Arg(50'000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(3);

} // namespace
} // namespace quillery::bench

int main(int argc, char** argv) {
    using namespace quillery::bench;
    quillery::diagnostics::setSink([](std::string_view) {});
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    const Best& few = g_open[5'000];
    const Best& many = g_open[50'000];
    if (few.measured() && many.measured()) {
        std::printf(
            "50,000 journals: open %.0f ms (target about 1000 ms), processor time %.0f ms\n",
            many.seconds * 1e3, many.cpuSeconds * 1e3);
        std::printf("/ 5,000 journals %.0f ms = %.1fx (linear: about 10x)\n", few.seconds * 1e3,
                    many.seconds / few.seconds);
    }
    return 0;
}
