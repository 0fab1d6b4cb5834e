#include "navigation/ColumnRow.h"

#include "NavigationFixture.h"
#include "columns/NoteEditorPanel.h"
#include "columns/NoteListView.h"
#include "columns/PicturePanel.h"
#include "columns/QtPicture.h"
#include "navigation/ColumnEdge.h"

#include <QDrag>
#include <QPointer>

namespace quillery {
namespace {

// The row as widgets: the rules themselves are ColumnSlots's, tested on their own.
class ColumnRowTest : public NavigationFixture {
protected:
    ColumnRowTest() {
        QObject::connect(&row, &ColumnRow::scrollRequested,
                         [this](const QRect& rect) { scrolledTo.push_back(rect); });
        show({2000, 500});
    }

    std::vector<QRect> scrolledTo;
};

TEST_F(ColumnRowTest, ColumnsOpenAlongTheSelectionTheLastTakingTheRoomLeftAndCloseForGood) {
    EXPECT_EQ(shown(), "root");
    area.hide();
    area.show();
    openFourColumns();
    EXPECT_EQ(shown(), "root b b2 b2x");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    EXPECT_EQ(row.column(2)->width(), row.columnWidth());
    EXPECT_EQ(row.column(3)->geometry().right(), row.width() - 1);
    QPointer<NoteColumn> closed = row.column(3);
    row.column(0)->selectRow(2);
    EXPECT_EQ(shown(), "root c");
    EXPECT_TRUE(QTest::qWaitFor([&] { return closed.isNull(); }));
}

TEST_F(ColumnRowTest, TheEditorStandsInForTheColumnsRightOfItsColumnUntilItCloses) {
    openFourColumns();
    QPointer<NoteColumn> fourth = row.column(3);
    row.column(1)->editSelectedNote();
    auto* editor = qobject_cast<NoteEditorPanel*>(row.panel());
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(shown(), "root b panel");
    EXPECT_FALSE(row.column(1)->isColumnEnabled());
    EXPECT_FALSE(fourth->isVisible());
    EXPECT_GE(editor->width(), row.panelWidth()) << "the last item takes the room left";
    EXPECT_TRUE(QTest::qWaitFor([&] { return scrolledTo.size() == 1u; }));
    EXPECT_EQ(scrolledTo[0], editor->geometry());

    QPointer<QWidget> closed = editor;
    editor->cancel();
    EXPECT_EQ(shown(), "root b b2 b2x");
    EXPECT_TRUE(row.column(1)->isColumnEnabled());
    EXPECT_TRUE(fourth->isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return closed.isNull() && hasFocus(1); }));
    EXPECT_EQ(row.column(1)->selectedNode(), notes["b2"]);
    EXPECT_EQ(scrolledTo.back(), row.column(1)->geometry());
}

TEST_F(ColumnRowTest, SpaceOnAPictureNoteOpensThePicturePanelWithTheFocus) {
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    const Identifier key = document.addImage(std::make_shared<QtPicture>(image), {1, 2, 3}, "png");
    document.add(*NotebookNode::create(document.rootNode()->identifier(), "", key),
                 *document.rootNode(), -1);
    row.column(0)->selectRow(3);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    auto* panel = qobject_cast<PicturePanel*>(row.panel());
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->image().size(), image.size());
    EXPECT_TRUE(QTest::qWaitFor([&] { return panel->isAncestorOf(QApplication::focusWidget()); }));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(row.panel(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return hasFocus(0); }));
}

// A click selects on release; a press that turns into a drag leaves the selection and the columns
// right of it as they are, so the row can go into the deepest of them, where it is then selected.
TEST_F(ColumnRowTest, ARowDraggedToTheRightDropsIntoADeeperColumnAndIsSelectedThere) {
    document.add(*NotebookNode::create(Identifier("root"), "d"), *document.rootNode(), -1);
    const NodePtr d = document.rootNode()->children().back();
    openFourColumns();
    NoteListView* list = row.column(0)->listView();
    const QPoint from = list->visualRect(list->model()->index(3, 0)).center();
    QTest::mousePress(list->viewport(), Qt::LeftButton, {}, from);
    EXPECT_EQ(shown(), "root b b2 b2x") << "a press alone selects nothing";
    std::string openWhileDragging;
    list->setDragRunner([&](QDrag& drag) {
        openWhileDragging = shown();
        QWidget* deepest = row.column(3)->listView()->viewport();
        const QPoint at(20, 20);
        QDragEnterEvent enter(at, Qt::MoveAction, drag.mimeData(), Qt::LeftButton, {});
        QApplication::sendEvent(deepest, &enter);
        QDragMoveEvent move(at, Qt::MoveAction, drag.mimeData(), Qt::LeftButton, {});
        QApplication::sendEvent(deepest, &move);
        QDropEvent drop(at, Qt::MoveAction, drag.mimeData(), Qt::LeftButton, {});
        QApplication::sendEvent(deepest, &drop);
        return drop.isAccepted() ? drop.dropAction() : Qt::IgnoreAction;
    });
    for (int step = 1; step <= 4; ++step)
        QTest::mouseMove(list->viewport(), from + QPoint(8 * step, -2 * step));
    EXPECT_EQ(openWhileDragging, "root b b2 b2x");
    EXPECT_EQ(d->parentNode(), notes["b2x"].get());
    // The row leaving the first column moves no selection there.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return row.column(3) && row.column(3)->selectedNode() == d && hasFocus(3); }));
    EXPECT_EQ(shown(), "root b b2 b2x d");

    const QPoint c = list->visualRect(list->model()->index(2, 0)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, c);
    EXPECT_EQ(shown(), "root c");
    QTest::keyClick(list, Qt::Key_Up);
    EXPECT_EQ(shown(), "root b") << "the keys go on from the row clicked";
}

// A column's right edge dragged sets its width; double-clicked, it fits the column to its notes.
TEST_F(ColumnRowTest, AColumnsEdgeDraggedOrDoubleClickedSetsItsWidth) {
    openFourColumns();
    row.focusColumn(2);
    NoteColumn* column = row.column(1);
    auto* edge = column->findChild<ColumnEdge*>();
    ASSERT_NE(edge, nullptr);
    const QPoint grip = edge->rect().center();
    QTest::mousePress(edge, Qt::LeftButton, {}, grip);
    QTest::mouseMove(edge, grip + QPoint(60, 0));
    QTest::mouseRelease(edge, Qt::LeftButton, {}, grip + QPoint(60, 0));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    EXPECT_EQ(column->width(), row.columnWidth() + 60);
    EXPECT_EQ(row.chosenWidths(), (std::vector<int>{0, row.columnWidth() + 60}));
    EXPECT_EQ(row.column(2)->x(), column->geometry().right() + 2);
    EXPECT_TRUE(hasFocus(2)) << "the keyboard stays where it was";

    // Its notes, b1 and b2, are short.
    QTest::mouseDClick(edge, Qt::LeftButton, {}, edge->rect().center());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    EXPECT_LT(column->width(), row.columnWidth());
    EXPECT_EQ(row.chosenWidths()[1], column->width());
}

} // namespace
} // namespace quillery
