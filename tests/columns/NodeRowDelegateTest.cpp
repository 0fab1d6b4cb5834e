#include "columns/NodeRowDelegate.h"

#include "ColumnTestSupport.h"
#include "columns/ColumnDropHandler.h"
#include "columns/NodeListModel.h"
#include "columns/StyledTextLayout.h"

#include <QElapsedTimer>
#include <QMimeData>

namespace quillery::testing {
namespace {

class RowHeights : public ColumnFixture {
protected:
    int shownHeight(int row) const {
        QApplication::processEvents();
        return column->tableView()
            ->visualRect(column->tableView()->model()->index(row, 0))
            .height();
    }
    NodeRowDelegate& rows() const {
        return *qobject_cast<NodeRowDelegate*>(column->tableView()->itemDelegate());
    }
};

TEST_F(RowHeights, APictureFillsTheColumnWidthAtItsAspectRatio) {
    const NodePtr parent = add(document.rootNode(), "parent");
    addPicture(parent, {400, 200});
    open(parent);
    const int width = column->tableView()->viewport()->width();
    EXPECT_EQ(rows().columnWidth(), width);
    EXPECT_EQ(shownHeight(0), width / 2);
    rows().setColumnWidth(300);
    EXPECT_EQ(rows().rowHeight(*parent->children()[0]), 150);
}

TEST_F(RowHeights, AnUnknownPictureUsesThePlaceholdersShape) {
    const NodePtr parent = add(document.rootNode(), "parent");
    document.userDidAdd(*NotebookNode::create(parent->identifier(), "", Identifier::makeRandom()),
                        *parent, 0);
    open(parent);
    rows().setColumnWidth(300);
    EXPECT_EQ(rows().rowHeight(*parent->children()[0]), 150); // the placeholder is 40 × 20
}

TEST(RowHeightsWithoutPictures, APictureRowWithNoPictureAtAllIs192High) {
    InMemoryPreferences preferences;
    Document document(preferences);
    NodeRowDelegate rows(&document);
    const NodePtr picture = NotebookNode::create(Identifier("root"), "", Identifier::makeRandom());
    EXPECT_EQ(rows.rowHeight(*picture), NodeRowDelegate::kNoPictureHeight);
}

TEST_F(RowHeights, TextRowsAreTheirTextPlus24AndWrapWhenNarrow) {
    const NodePtr parent = add(document.rootNode(), "parent");
    const NodePtr note = add(parent, "A sentence long enough that a narrow column must wrap it "
                                     "onto several lines of text");
    open(parent);
    rows().setColumnWidth(1000);
    const int wide = rows().rowHeight(*note);
    EXPECT_EQ(wide, static_cast<int>(std::ceil(StyledTextLayout::measure(note->text(), 984))) +
                        NodeRowDelegate::kVerticalSpace);
    rows().setColumnWidth(120);
    EXPECT_GT(rows().rowHeight(*note), wide);
}

TEST_F(RowHeights, HugeTextIsCutAtTheMeasuringBox) {
    const NodePtr parent = add(document.rootNode(), "parent");
    std::string text;
    for (int line = 0; line < 20000; ++line)
        text += "line\n";
    const NodePtr note = add(parent, text);
    open(parent);
    EXPECT_EQ(rows().rowHeight(*note),
              static_cast<int>(StyledTextLayout::kMaxHeight) + NodeRowDelegate::kVerticalSpace);
}

TEST_F(RowHeights, ALongColumnMeasuresOnlyTheRowsItShows) {
    const NodePtr parent = NotebookNode::create(Identifier("root"), "parent");
    auto& children = parent->children();
    for (int i = 0; i < 5000; ++i)
        children.push_back(NotebookNode::create(parent->identifier(), "note " + std::to_string(i)));
    open(parent);
    // Painting measures the rows on screen.
    QElapsedTimer waited;
    waited.start();
    while (rows().measuredRowCount() == 0 && waited.elapsed() < 5000)
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    for (int turn = 0; turn < 10; ++turn)
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    EXPECT_GT(rows().measuredRowCount(), 0u);
    EXPECT_LT(rows().measuredRowCount(), 200u);
    // The rows on screen have their exact heights.
    EXPECT_EQ(shownHeight(0), rows().rowHeight(*children[0]));

    // Jumping to the end measures the rows shown there, not those scrolled past.
    column->tableView()->scrollToBottom();
    for (int turn = 0; turn < 10; ++turn)
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    EXPECT_LT(rows().measuredRowCount(), 400u);
    EXPECT_EQ(shownHeight(4999), rows().rowHeight(*children[4999]));
}

TEST_F(RowHeights, AnEstimateIsCloseForPlainText) {
    const NodePtr note = NotebookNode::create(Identifier("root"), "one line\nand another");
    NodeRowDelegate rows(&document);
    rows.setColumnWidth(300);
    EXPECT_NEAR(rows.estimatedRowHeight(*note), rows.rowHeight(*note), 8);
}

// The list model answers drags and drops through the column's drop handler.
class ColumnModelDrops : public ColumnFixture {};

TEST_F(ColumnModelDrops, ANoteDroppedAboveARowMovesThere) {
    const NodePtr parent = add(document.rootNode(), "parent");
    for (const char* text : {"a", "b", "c"})
        add(parent, text);
    open(parent);
    QAbstractItemModel* model = column->tableView()->model();
    std::unique_ptr<QMimeData> drag(model->mimeData({model->index(0, 0)}));
    ASSERT_NE(drag, nullptr);
    EXPECT_TRUE(drag->hasFormat(QString::fromLatin1(kNodeDragAndDropDataType)));
    EXPECT_FALSE(model->canDropMimeData(drag.get(), Qt::MoveAction, 1, 0, {})); // stays put
    EXPECT_FALSE(model->canDropMimeData(drag.get(), Qt::MoveAction, -1, -1, model->index(0, 0)));
    EXPECT_TRUE(model->canDropMimeData(drag.get(), Qt::MoveAction, 3, 0, {}));
    EXPECT_TRUE(model->dropMimeData(drag.get(), Qt::MoveAction, 3, 0, {}));
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"b", "c", "a"}));
    EXPECT_EQ(model->index(2, 0).data().toString(), QStringLiteral("a"));
}

TEST_F(ColumnModelDrops, ADroppedAddressOpensItsNoteInTheEditorNextTurn) {
    const NodePtr parent = add(document.rootNode(), "parent");
    open(parent);
    QMimeData address;
    address.setUrls({QUrl(QStringLiteral("https://example.org/page"))});
    QAbstractItemModel* model = column->tableView()->model();
    // Copied, never moved: the source keeps what it offered.
    EXPECT_EQ(qobject_cast<NodeListModel*>(model)->dropAction(address, -1, {}), Qt::CopyAction);
    ASSERT_TRUE(model->dropMimeData(&address, Qt::CopyAction, -1, -1, {}));
    EXPECT_EQ(delegate.editor, nullptr);
    QApplication::processEvents();
    ASSERT_NE(delegate.editor, nullptr);
    EXPECT_EQ(delegate.editor->representedNode(), parent->children().back());
}

} // namespace
} // namespace quillery::testing
