#include "ColumnTestSupport.h"

#include <QAbstractItemModelTester>
#include <QLabel>

namespace quillery::testing {
namespace {

// Two columns as the navigation shows them: the root's children, and the children of "parent".
class ColumnUpdates : public ColumnFixture {
protected:
    void SetUp() override {
        parent = add(document.rootNode(), "parent");
        sibling = add(document.rootNode(), "sibling");
        for (const char* text : {"a", "b", "c"})
            add(parent, text);
        open(parent);
        rootColumn = makeColumn(document.rootNode(), 0, rootNavigation);
        for (NoteColumn* each : {column.get(), rootColumn.get()})
            testers.push_back(std::make_unique<QAbstractItemModelTester>(
                each->listView()->model(), QAbstractItemModelTester::FailureReportingMode::Fatal));
    }

    int rows(const NoteColumn& shown) const { return shown.listView()->model()->rowCount(); }

    // The texts the column's rows show, in order.
    std::vector<std::string> shownTexts(const NoteColumn& shown) const {
        std::vector<std::string> result;
        auto* model = shown.listView()->model();
        for (int row = 0; row < model->rowCount(); ++row)
            result.push_back(model->index(row, 0).data().toString().toStdString());
        return result;
    }

    NodePtr parent;
    NodePtr sibling;
    RecordingColumnDelegate rootNavigation;
    std::unique_ptr<NoteColumn> rootColumn;
    std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;
};

TEST_F(ColumnUpdates, AnAddedChildGetsItsRowAndHidesTheLabel) {
    open(sibling);
    EXPECT_TRUE(emptyLabel()->isVisible());
    add(sibling, "first");
    EXPECT_EQ(shownTexts(*column), (std::vector<std::string>{"first"}));
    EXPECT_FALSE(emptyLabel()->isVisible());
}

TEST_F(ColumnUpdates, InsertingKeepsTheSelectionOnItsNote) {
    column->selectRow(1);
    const std::size_t heard = delegate.selected.size();
    add(parent, "new", 0);
    EXPECT_EQ(shownTexts(*column), (std::vector<std::string>{"new", "a", "b", "c"}));
    EXPECT_EQ(column->selectedNode()->text(), "b");
    EXPECT_EQ(delegate.selected.size(), heard);
}

TEST_F(ColumnUpdates, DeletingTheSelectedLastRowSelectsTheNewLastRow) {
    column->selectRow(2);
    document.userDidMove(*parent->children()[2], *document.deletedRootNode());
    EXPECT_EQ(shownTexts(*column), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(column->selectedRow(), 1);
    EXPECT_EQ(delegate.selected.back()->text(), "b");
}

TEST_F(ColumnUpdates, DeletingTheSelectedFirstRowSelectsTheNoteThatTakesItsPlace) {
    column->selectRow(0);
    document.userDidMove(*parent->children()[0], *document.deletedRootNode());
    EXPECT_EQ(column->selectedRow(), 0);
    EXPECT_EQ(delegate.selected.back()->text(), "b");
}

TEST_F(ColumnUpdates, DeletingWithNothingSelectedSelectsNothing) {
    column->listView()->selectionModel()->clearSelection();
    document.userDidMove(*parent->children()[1], *document.deletedRootNode());
    EXPECT_EQ(column->selectedRow(), -1);
    EXPECT_EQ(shownTexts(*column), (std::vector<std::string>{"a", "c"}));
}

TEST_F(ColumnUpdates, DeletingTheOnlyRowShowsTheLabel) {
    const NodePtr only = add(sibling, "only");
    open(sibling);
    document.userDidMove(*only, *document.deletedRootNode());
    EXPECT_EQ(rows(*column), 0);
    EXPECT_EQ(column->selectedRow(), -1);
    EXPECT_TRUE(emptyLabel()->isVisible());
    EXPECT_GE(delegate.cleared, 1);
}

TEST_F(ColumnUpdates, ReorderingMovesTheRowAndTheSelectionWithIt) {
    column->selectRow(0);
    document.userDidMove(*parent->children()[0], 3); // after "c"
    EXPECT_EQ(shownTexts(*column), (std::vector<std::string>{"b", "c", "a"}));
    EXPECT_EQ(column->selectedNode()->text(), "a");
    document.userDidMove(*parent->children()[2], 0);
    EXPECT_EQ(shownTexts(*column), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(column->selectedRow(), 0);
}

TEST_F(ColumnUpdates, MovingToAnotherParentUpdatesBothColumnsAndTheParentsRows) {
    auto siblingColumn = makeColumn(sibling, 1, rootNavigation);
    QAbstractItemModelTester tester(siblingColumn->listView()->model(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    int refreshedRootRows = 0;
    QObject::connect(rootColumn->listView()->model(), &QAbstractItemModel::dataChanged,
                     [&] { ++refreshedRootRows; });
    document.userDidMove(*parent->children()[1], *sibling);
    EXPECT_EQ(shownTexts(*column), (std::vector<std::string>{"a", "c"}));
    EXPECT_EQ(shownTexts(*siblingColumn), (std::vector<std::string>{"b"}));
    EXPECT_EQ(refreshedRootRows, 2); // the rows of "parent" and "sibling" show new counts
    EXPECT_EQ(shownTexts(*rootColumn), (std::vector<std::string>{"parent", "sibling"}));
}

TEST_F(ColumnUpdates, ChangedTextRedrawsAndRemeasuresTheRow) {
    int refreshed = 0;
    QObject::connect(column->listView()->model(), &QAbstractItemModel::dataChanged,
                     [&] { ++refreshed; });
    const int before =
        column->listView()->visualRect(column->listView()->model()->index(1, 0)).height();
    document.userDidModify(*parent->children()[1], "# A heading\nand\nthree\nlines");
    EXPECT_EQ(refreshed, 1);
    QApplication::processEvents();
    const int after =
        column->listView()->visualRect(column->listView()->model()->index(1, 0)).height();
    EXPECT_GT(after, before);
}

TEST_F(ColumnUpdates, AddingBelowARowOfThisColumnRefreshesOnlyThatRow) {
    std::vector<int> refreshedRows;
    QObject::connect(rootColumn->listView()->model(), &QAbstractItemModel::dataChanged,
                     [&](const QModelIndex& first) { refreshedRows.push_back(first.row()); });
    add(sibling, "child");
    EXPECT_EQ(refreshedRows, std::vector<int>{1});
    EXPECT_EQ(rows(*rootColumn), 2);
}

TEST_F(ColumnUpdates, UndoAndRedoFromAnotherColumnReachThisOne) {
    // An edit made in the root column, taken back through the Edit menu's history.
    document.userDidMove(*sibling, *parent, 1);
    EXPECT_EQ(shownTexts(*column), (std::vector<std::string>{"a", "sibling", "b", "c"}));
    EXPECT_EQ(shownTexts(*rootColumn), (std::vector<std::string>{"parent"}));
    undoManager.undo();
    EXPECT_EQ(shownTexts(*column), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(shownTexts(*rootColumn), (std::vector<std::string>{"parent", "sibling"}));
    undoManager.redo();
    EXPECT_EQ(shownTexts(*column), (std::vector<std::string>{"a", "sibling", "b", "c"}));
}

TEST_F(ColumnUpdates, UndoingAnAddRemovesTheRow) {
    add(parent, "d");
    undoManager.undo();
    EXPECT_EQ(shownTexts(*column), (std::vector<std::string>{"a", "b", "c"}));
    undoManager.redo();
    EXPECT_EQ(shownTexts(*column), (std::vector<std::string>{"a", "b", "c", "d"}));
}

TEST_F(ColumnUpdates, AnotherDocumentIsNeverHeard) {
    InMemoryPreferences otherPreferences;
    Document other(otherPreferences);
    other.userDidAdd(*NotebookNode::create(other.rootNode()->identifier(), "x"), *other.rootNode(),
                     0);
    EXPECT_EQ(rows(*rootColumn), 2);
}

} // namespace
} // namespace quillery::testing
