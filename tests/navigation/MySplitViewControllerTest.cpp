#include "navigation/MySplitViewController.h"

#include "columns/CustomTableView.h"
#include "columns/EditNodeViewController.h"
#include "columns/ImageDetailViewController.h"
#include "columns/ListViewController.h"
#include "columns/QtPicture.h"
#include "navigation/MyHorizontalScrollViewController.h"
#include "navigation/NavigationFixture.h"

#include <QApplication>
#include <QPointer>
#include <QTest>

namespace quillery {
namespace {

class RecordingScrollDelegate {
public:
    explicit RecordingScrollDelegate(MySplitViewController& split) {
        QObject::connect(&split, &MySplitViewController::scrollRequested,
                         [this](const QRect& rect) { requests.push_back(rect); });
    }
    std::vector<QRect> requests;
};

class MySplitViewControllerTest : public NavigationFixture {
protected:
    MySplitViewControllerTest()
        : host(&document)
        , split(*host.splitViewController()) {
        host.resize(2000, 500);
        host.show();
    }

    ListViewController& column(int depth) {
        ListViewController* found = split.column(depth);
        EXPECT_NE(found, nullptr) << "no column at depth " << depth;
        return *found;
    }

    std::vector<NodePtr> representedNodes() const {
        std::vector<NodePtr> nodes;
        for (QWidget* item : split.items()) {
            auto* listColumn = qobject_cast<ListViewController*>(item);
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

    MyHorizontalScrollViewController host;
    MySplitViewController& split;
};

TEST_F(MySplitViewControllerTest, TheFirstColumnShowsTheRootOnceShown) {
    ASSERT_EQ(split.items().size(), 1u);
    EXPECT_EQ(column(0).representedNode(), document.rootNode());
    EXPECT_EQ(column(0).nodeDepth(), 0);

    host.hide();
    host.show();
    EXPECT_EQ(split.items().size(), 1u);
}

TEST_F(MySplitViewControllerTest, SelectingARowOpensTheColumnOfItsNote) {
    column(0).selectRow(0);
    column(1).selectRow(1);
    EXPECT_EQ(representedNodes(), (std::vector<NodePtr>{document.rootNode(), a, a2}));
    EXPECT_EQ(column(2).nodeDepth(), 2);
    EXPECT_TRUE(column(2).isVisible());
}

TEST_F(MySplitViewControllerTest, SelectingFurtherLeftClosesTheColumnsRightOfIt) {
    openFourColumns();
    QPointer<QWidget> closed = split.items()[3];

    column(0).selectRow(1);

    EXPECT_EQ(representedNodes(), (std::vector<NodePtr>{document.rootNode(), b}));
    EXPECT_TRUE(QTest::qWaitFor([&] { return closed.isNull(); }));
}

TEST_F(MySplitViewControllerTest, ClearingASelectionClosesTheColumnsRightOfIt) {
    openFourColumns();
    column(1).tableView()->clearSelection();
    EXPECT_EQ(representedNodes(), (std::vector<NodePtr>{document.rootNode(), a}));
}

TEST_F(MySplitViewControllerTest, ColumnsKeepTheirWidthAndTheRowGrowsToTheRight) {
    openFourColumns();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    for (QWidget* item : split.items()) {
        EXPECT_EQ(item->width(), split.columnWidth());
    }
    EXPECT_LT(split.items()[0]->x(), split.items()[1]->x());
    EXPECT_GE(split.width(), 4 * split.columnWidth());
}

TEST_F(MySplitViewControllerTest, ArrowsMoveTheFocusToTheNeighbouringColumn) {
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

TEST_F(MySplitViewControllerTest, APanelPutsAsideTheColumnsRightOfItAndDisablesThoseLeft) {
    openFourColumns();
    RecordingScrollDelegate scrolls(split);
    QPointer<QWidget> third = split.items()[2];
    QPointer<QWidget> fourth = split.items()[3];
    auto* panel = new QWidget;

    split.present(panel, 2);

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

TEST_F(MySplitViewControllerTest, DismissingRestoresTheColumnsAndFocusesTheOpener) {
    host.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&host));
    openFourColumns();
    const std::vector<QWidget*> before = split.items();
    QPointer<QWidget> panel = new QWidget;
    split.present(panel, 2);
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
TEST_F(MySplitViewControllerTest, TheEditorOpensBesideItsColumnAndClosesBackIntoIt) {
    host.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&host));
    openFourColumns();

    column(1).didTapEditNode();

    auto* editor = qobject_cast<EditNodeViewController*>(split.panel());
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(split.items().size(), 3u);
    EXPECT_EQ(split.items()[2], editor);

    editor->didTapCancel();

    EXPECT_EQ(representedNodes(), (std::vector<NodePtr>{document.rootNode(), a, a2, a2x}));
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return column(1).isAncestorOf(QApplication::focusWidget()); }));
    EXPECT_EQ(column(1).selectedNode(), a2);
}

TEST_F(MySplitViewControllerTest, ASecondPanelIsRefusedAndDeleted) {
    split.present(new QWidget, 1);
    QPointer<QWidget> second = new QWidget;
    split.present(second, 1);
    EXPECT_EQ(split.items().size(), 2u);
    EXPECT_TRUE(QTest::qWaitFor([&] { return second.isNull(); }));
}

TEST_F(MySplitViewControllerTest, DoubleClickingAPictureNoteOpensThePicturePanel) {
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
    auto* panel = qobject_cast<ImageDetailViewController*>(split.panel());
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->image().size(), image.size());
    // Focused at once, so Escape closes it without a click first.
    EXPECT_TRUE(QTest::qWaitFor([&] { return panel->isAncestorOf(QApplication::focusWidget()); }));

    emit panel->finished();
    EXPECT_EQ(split.panel(), nullptr);
}

} // namespace
} // namespace quillery
