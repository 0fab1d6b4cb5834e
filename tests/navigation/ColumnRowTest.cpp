#include "navigation/ColumnRow.h"

#include "columns/NoteColumn.h"
#include "columns/NoteEditorPanel.h"
#include "columns/NoteListView.h"
#include "columns/PicturePanel.h"
#include "columns/QtPicture.h"
#include "navigation/ColumnScrollArea.h"
#include "navigation/NavigationFixture.h"

#include <QApplication>
#include <QPointer>
#include <QTest>

namespace quillery {
namespace {

class RecordingScrollDelegate {
public:
    explicit RecordingScrollDelegate(ColumnRow& split) {
        QObject::connect(&split, &ColumnRow::scrollRequested,
                         [this](const QRect& rect) { requests.push_back(rect); });
    }
    std::vector<QRect> requests;
};

class ColumnRowTest : public NavigationFixture {
protected:
    ColumnRowTest()
        : host(&document)
        , split(*host.columnRow()) {
        host.resize(2000, 500);
        host.show();
    }

    NoteColumn& column(int depth) {
        NoteColumn* found = split.column(depth);
        EXPECT_NE(found, nullptr) << "no column at depth " << depth;
        return *found;
    }

    std::vector<NodePtr> representedNodes() const {
        std::vector<NodePtr> nodes;
        for (QWidget* item : split.items()) {
            auto* listColumn = qobject_cast<NoteColumn*>(item);
            nodes.push_back(listColumn ? listColumn->representedNode() : nullptr);
        }
        return nodes;
    }

    // Columns root, a, a2, a2x: the path to a2x selected.
    void openFourColumns() {
        column(0).selectRow(0);
        column(1).selectRow(1);
        column(2).selectRow(0);
        ASSERT_EQ(split.items().size(), 4u);
    }

    ColumnScrollArea host;
    ColumnRow& split;
};

TEST_F(ColumnRowTest, TheFirstColumnShowsTheRootOnceShown) {
    ASSERT_EQ(split.items().size(), 1u);
    EXPECT_EQ(column(0).representedNode(), document.rootNode());
    EXPECT_EQ(column(0).depth(), 0);

    host.hide();
    host.show();
    EXPECT_EQ(split.items().size(), 1u);
}

TEST_F(ColumnRowTest, SelectingARowOpensTheColumnOfItsNote) {
    column(0).selectRow(0);
    column(1).selectRow(1);
    EXPECT_EQ(representedNodes(), (std::vector<NodePtr>{document.rootNode(), a, a2}));
    EXPECT_EQ(column(2).depth(), 2);
    EXPECT_TRUE(column(2).isVisible());
}

TEST_F(ColumnRowTest, SelectingFurtherLeftClosesTheColumnsRightOfIt) {
    openFourColumns();
    QPointer<QWidget> closed = split.items()[3];

    column(0).selectRow(1);

    EXPECT_EQ(representedNodes(), (std::vector<NodePtr>{document.rootNode(), b}));
    EXPECT_TRUE(QTest::qWaitFor([&] { return closed.isNull(); }));
}

TEST_F(ColumnRowTest, ClearingASelectionClosesTheColumnsRightOfIt) {
    openFourColumns();
    column(1).listView()->clearSelection();
    EXPECT_EQ(representedNodes(), (std::vector<NodePtr>{document.rootNode(), a}));
}

TEST_F(ColumnRowTest, ColumnsKeepTheirWidthAndTheRowGrowsToTheRight) {
    openFourColumns();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    for (QWidget* item : split.items()) {
        EXPECT_EQ(item->width(), split.columnWidth());
    }
    EXPECT_LT(split.items()[0]->x(), split.items()[1]->x());
    EXPECT_GE(split.width(), 4 * split.columnWidth());
}

TEST_F(ColumnRowTest, ArrowsMoveTheFocusToTheNeighbouringColumn) {
    host.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&host));
    openFourColumns();

    emit column(1).focusRightRequested();
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return column(2).isAncestorOf(QApplication::focusWidget()); }));

    emit column(2).focusLeftRequested();
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return column(1).isAncestorOf(QApplication::focusWidget()); }));
    EXPECT_EQ(split.activeColumn(), &column(1));
}

TEST_F(ColumnRowTest, APanelPutsAsideTheColumnsRightOfItAndDisablesThoseLeft) {
    openFourColumns();
    RecordingScrollDelegate scrolls(split);
    QPointer<QWidget> third = split.items()[2];
    QPointer<QWidget> fourth = split.items()[3];
    auto* panel = new QWidget;

    split.showPanel(panel, 2);

    ASSERT_EQ(split.items().size(), 3u);
    EXPECT_EQ(split.items()[2], panel);
    EXPECT_EQ(split.panel(), panel);
    EXPECT_FALSE(column(0).isColumnEnabled());
    EXPECT_FALSE(column(1).isColumnEnabled());
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->width(), split.panelWidth());
    ASSERT_FALSE(third.isNull());
    EXPECT_FALSE(third->isVisible());
    EXPECT_EQ(split.activeColumn(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return scrolls.requests.size() == 1u; }));
    EXPECT_EQ(scrolls.requests[0], panel->geometry());
}

TEST_F(ColumnRowTest, DismissingRestoresTheColumnsAndFocusesTheOpener) {
    host.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&host));
    openFourColumns();
    const std::vector<QWidget*> before = split.items();
    QPointer<QWidget> panel = new QWidget;
    split.showPanel(panel, 2);
    RecordingScrollDelegate scrolls(split);

    emit column(1).editorDone();

    EXPECT_EQ(split.items(), before);
    EXPECT_EQ(split.panel(), nullptr);
    EXPECT_TRUE(column(0).isColumnEnabled());
    EXPECT_TRUE(column(1).isColumnEnabled());
    EXPECT_TRUE(column(3).isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return panel.isNull(); }));
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return column(1).isAncestorOf(QApplication::focusWidget()); }));
    ASSERT_EQ(scrolls.requests.size(), 1u);
    EXPECT_EQ(scrolls.requests[0], column(1).geometry());
}

// The real editor, opened by a column's Edit command and closed by its Cancel.
TEST_F(ColumnRowTest, TheEditorOpensBesideItsColumnAndClosesBackIntoIt) {
    host.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&host));
    openFourColumns();

    column(1).editSelectedNote();

    auto* editor = qobject_cast<NoteEditorPanel*>(split.panel());
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(split.items().size(), 3u);
    EXPECT_EQ(split.items()[2], editor);

    editor->cancel();

    EXPECT_EQ(representedNodes(), (std::vector<NodePtr>{document.rootNode(), a, a2, a2x}));
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return column(1).isAncestorOf(QApplication::focusWidget()); }));
    EXPECT_EQ(column(1).selectedNode(), a2);
}

TEST_F(ColumnRowTest, ASecondPanelIsRefusedAndDeleted) {
    split.showPanel(new QWidget, 1);
    QPointer<QWidget> second = new QWidget;
    split.showPanel(second, 1);
    EXPECT_EQ(split.items().size(), 2u);
    EXPECT_TRUE(QTest::qWaitFor([&] { return second.isNull(); }));
}

TEST_F(ColumnRowTest, DoubleClickingAPictureNoteOpensThePicturePanel) {
    host.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&host));
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    const Identifier key = document.addImage(std::make_shared<QtPicture>(image), {1, 2, 3}, "png");
    const NodePtr picture = std::make_shared<NotebookNode>(
        Identifier::makeRandom(), document.rootNode()->identifier(), std::string(), key);
    document.add(*picture, *document.rootNode(), -1);
    const NodePtr added = document.rootNode()->children().back();

    emit column(0).picturePreviewRequested(a);
    EXPECT_EQ(split.panel(), nullptr);

    emit column(0).picturePreviewRequested(added);
    auto* panel = qobject_cast<PicturePanel*>(split.panel());
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->image().size(), image.size());
    // Focused at once, so Escape closes it without a click first.
    EXPECT_TRUE(QTest::qWaitFor([&] { return panel->isAncestorOf(QApplication::focusWidget()); }));

    emit panel->finished();
    EXPECT_EQ(split.panel(), nullptr);
}

} // namespace
} // namespace quillery
