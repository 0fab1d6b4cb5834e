#include "columns/NoteListView.h"

#include "ColumnTestSupport.h"

#include <QMimeData>
#include <QScrollBar>
#include <QStringListModel>
#include <QWheelEvent>

#include <optional>

namespace quillery::testing {
namespace {

// Wheel and touchpad motion over a list in the column row: mostly-horizontal motion is left for
// the row's scroll area, the rest scrolls the list (down, in every case here). Qt hands an ignored
// wheel event on to the parent widgets only when it came from the window system, so the list's own
// answer is tested.
struct Motion {
    QPoint delta;
    bool sideways;

    friend void PrintTo(const Motion& c, std::ostream* out) {
        *out << "(" << c.delta.x() << ", " << c.delta.y() << ")";
    }
};

class ExposedListView : public NoteListView {
public:
    using NoteListView::wheelEvent;
};

class WheelInColumnRow : public ::testing::TestWithParam<Motion> {};

TEST_P(WheelInColumnRow, ScrollsTheListUnlessItIsSideways) {
    QStringList lines;
    for (int i = 0; i < 200; ++i)
        lines << QString::number(i);
    QStringListModel model(lines);
    ExposedListView list;
    list.setModel(&model);
    list.resize(200, 150);
    list.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&list));
    const QPoint pixels = GetParam().delta * 10;
    const QPointF at(20, 20);
    QWheelEvent event(at, list.viewport()->mapToGlobal(at), pixels, pixels * 4, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    list.wheelEvent(&event);
    EXPECT_EQ(event.isAccepted(), !GetParam().sideways);
    EXPECT_EQ(list.verticalScrollBar()->value() > 0, !GetParam().sideways);
}

INSTANTIATE_TEST_SUITE_P(Deltas, WheelInColumnRow,
                         ::testing::Values(Motion{{5, 1}, true}, Motion{{-5, 1}, true},
                                           Motion{{4, -5}, false}, Motion{{0, -3}, false},
                                           Motion{{1, -4}, false}));

// The mark where a dragged note would land is drawn in the list's highlight colour, and only
// where the note may be dropped.
class DropMark : public ColumnFixture {
protected:
    static constexpr QRgb kHighlight = qRgb(255, 0, 255);

    DropMark() {
        const NodePtr parent = add(document.rootNode(), "parent");
        for (const char* text : {"a", "b", "c"})
            add(parent, text);
        open(parent);
        // Only the mark may show the highlight colour, not a selected row.
        column->listView()->clearSelection();
        QPalette palette = column->listView()->palette();
        palette.setColor(QPalette::Highlight, QColor(kHighlight));
        column->listView()->setPalette(palette);
    }

    // Drags the row over a point of the list (by way of another, when given) and counts the
    // highlight-coloured pixels shown.
    int markPixels(int draggedRow, QPoint at, std::optional<QPoint> byWayOf = std::nullopt) {
        QWidget* viewport = column->listView()->viewport();
        QAbstractItemModel* model = column->listView()->model();
        std::unique_ptr<QMimeData> drag(model->mimeData({model->index(draggedRow, 0)}));
        QDragEnterEvent enter(at, Qt::MoveAction, drag.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &enter);
        for (const QPoint point : {byWayOf.value_or(at), at}) {
            QDragMoveEvent move(point, Qt::MoveAction, drag.get(), Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(viewport, &move);
        }
        const QImage shown = viewport->grab().toImage();
        QDragLeaveEvent leave;
        QApplication::sendEvent(viewport, &leave);
        int count = 0;
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x)
                count += shown.pixel(x, y) == kHighlight ? 1 : 0;
        }
        return count;
    }
    QRect row(int index) const {
        return column->listView()->visualRect(column->listView()->model()->index(index, 0));
    }
    QPoint gapAbove(int index) const { return {row(index).center().x(), row(index).top() + 1}; }
};

TEST_F(DropMark, OutlinesTheRowOrLinesTheGapOnlyWhereTheNoteMayGo) {
    EXPECT_GE(markPixels(0, row(2).center()), 2 * row(2).width());
    const int between = markPixels(0, gapAbove(2));
    EXPECT_GE(between, row(2).width() / 2);
    EXPECT_LT(between, 2 * row(2).width());
    // Not onto itself, nor just above itself where it already is, also after the drag passed
    // over a place that takes it.
    EXPECT_EQ(markPixels(1, row(1).center()), 0);
    EXPECT_EQ(markPixels(1, gapAbove(1)), 0);
    ASSERT_GT(markPixels(1, row(2).center()), 0);
    EXPECT_EQ(markPixels(1, row(1).center(), row(2).center()), 0);
}

} // namespace
} // namespace quillery::testing
