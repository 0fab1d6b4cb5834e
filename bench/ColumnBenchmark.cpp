// Opening a column costs what is on screen, not what is in the note: a column of 100,000 notes
// must show its first screen within 3 times the time a column of 100 notes takes.
#include "columns/NoteColumn.h"
#include "columns/NoteListView.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"

#include <QApplication>
#include <QElapsedTimer>

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>

namespace quillery {
namespace {

// A note with that many children of mixed, styled texts; built once per size.
NodePtr noteWithChildren(int count) {
    static std::map<int, NodePtr> notes;
    NodePtr& note = notes[count];
    if (note)
        return note;
    note = NotebookNode::create(rootIdentifier(), "parent");
    auto& children = note->children();
    children.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        std::string text = "Note " + std::to_string(i) + " with **bold** words and `code`";
        if (i % 7 == 0)
            text = "# Heading " + std::to_string(i) +
                   "\nA second line that is long enough to wrap "
                   "onto a third one in a column of usual width";
        children.push_back(NotebookNode::create(note->identifier(), text));
        if (i % 5 == 0)
            children.back()->children().push_back(
                NotebookNode::create(children.back()->identifier(), "child"));
    }
    return note;
}

// Counts the list's paint events.
class PaintWatcher : public QObject {
public:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
    int paints = 0;
};

struct Figure {
    double totalSeconds = 0;
    std::int64_t runs = 0;
    double mean() const { return runs ? totalSeconds / static_cast<double>(runs) : 0; }
};

std::map<int, Figure>& figures() {
    static std::map<int, Figure> all;
    return all;
}

void BM_OpenColumn(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    const NodePtr note = noteWithChildren(count);
    InMemoryPreferences preferences;
    Document document(preferences);
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        auto column = std::make_unique<NoteColumn>(&document);
        column->setDepth(1);
        column->setParentNote(note);
        column->resize(320, 900);
        PaintWatcher watcher;
        column->listView()->viewport()->installEventFilter(&watcher);
        column->show();
        // Until the first screen of rows has been painted.
        while (watcher.paints == 0)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
        state.SetIterationTime(seconds);
        figures()[count].totalSeconds += seconds;
        ++figures()[count].runs;
        column->listView()->viewport()->removeEventFilter(&watcher);
        column.reset();
        QCoreApplication::processEvents();
    }
    state.counters["children"] = count;
}
BENCHMARK(BM_OpenColumn)->Arg(100)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace quillery

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();

    const auto& all = quillery::figures();
    const auto small = all.find(100);
    const auto large = all.find(100000);
    if (small != all.end() && large != all.end() && small->second.mean() > 0) {
        const double ratio = large->second.mean() / small->second.mean();
        std::printf("first screen of a column: 100 children %.2f ms, 100000 children %.2f ms, "
                    "ratio %.2f (target: at most 3) %s\n",
                    small->second.mean() * 1e3, large->second.mean() * 1e3, ratio,
                    ratio <= 3 ? "PASS" : "FAIL");
    }
    return 0;
}
