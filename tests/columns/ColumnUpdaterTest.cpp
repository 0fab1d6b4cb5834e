#include "ColumnTestSupport.h"

#include <QAbstractItemModelTester>

#include <sstream>

namespace quillery::testing {
namespace {

// Two columns as the row shows them: the root's notes (parent, sibling) and parent's (a, b, c).
// Every change comes from the document, as edits made elsewhere (another column, the Edit
// menu's history) do; the models are checked by QAbstractItemModelTester throughout.
class ColumnUpdates : public ColumnFixture {
protected:
    void SetUp() override {
        parent = add(document.rootNode(), "parent");
        sibling = add(document.rootNode(), "sibling");
        for (const char* text : {"a", "b", "c"})
            add(parent, text);
        open(parent);
        rootColumn = makeColumn(document.rootNode(), 0);
        for (NoteColumn* each : {column.get(), rootColumn.get()}) {
            testers.push_back(std::make_unique<QAbstractItemModelTester>(
                each->listView()->model(), QAbstractItemModelTester::FailureReportingMode::Fatal));
        }
    }

    // The rows of the column whose data changed, one entry per change.
    static std::shared_ptr<std::vector<int>> refreshedRows(const NoteColumn& of) {
        auto rows = std::make_shared<std::vector<int>>();
        QObject::connect(of.listView()->model(), &QAbstractItemModel::dataChanged,
                         [rows](const QModelIndex& first) { rows->push_back(first.row()); });
        return rows;
    }

    NodePtr parent;
    NodePtr sibling;
    std::unique_ptr<NoteColumn> rootColumn;
    std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;
};

void remove(Document& document, const NodePtr& note) {
    document.userDidMove(*note, *document.deletedRootNode());
}

// A change to parent's notes a, b, c: "add TEXT AT", "delete ROW" or "move ROW TO".
struct UpdateCase {
    const char* name;
    int selected; // before the change
    const char* change;
    const char* shown;
    const char* nowSelected; // "-" for none
    bool heard;              // the row heard of a new selection
};

class RowOperations : public ColumnUpdates, public ::testing::WithParamInterface<UpdateCase> {
protected:
    void change(const std::string& script) {
        std::istringstream words(script);
        std::string verb;
        std::string text;
        std::size_t row = 0;
        std::size_t to = 0;
        words >> verb;
        if (verb == "add" && words >> text >> to)
            add(parent, text, static_cast<long>(to));
        else if (verb == "delete" && words >> row)
            remove(document, parent->children()[row]);
        else if (verb == "move" && words >> row >> to)
            document.userDidMove(*parent->children()[row], to);
    }
};

TEST_P(RowOperations, ShowTheNewOrderAndKeepTheSelectionOnItsNoteOrNearby) {
    const UpdateCase& test = GetParam();
    if (test.selected >= 0)
        column->selectRow(test.selected);
    else
        column->listView()->clearSelection();
    const std::size_t heardBefore = heard->selected.size();
    change(test.change);
    EXPECT_EQ(shown(*column), test.shown);
    const NodePtr selected = column->selectedNode();
    EXPECT_EQ(selected ? selected->text() : "-", test.nowSelected);
    EXPECT_EQ(heard->selected.size(), heardBefore + (test.heard ? 1 : 0));
}

INSTANTIATE_TEST_SUITE_P(
    Changes, RowOperations,
    ::testing::Values(
        UpdateCase{"AnInsertionKeepsTheSelectedNote", 1, "add new 0", "new, a, b, c", "b", false},
        UpdateCase{"DeletingTheLastRowSelectsTheNewLast", 2, "delete 2", "a, b", "b", true},
        UpdateCase{"DeletingTheFirstRowSelectsTheNext", 0, "delete 0", "b, c", "b", true},
        UpdateCase{"DeletingWithNothingSelected", -1, "delete 1", "a, c", "-", false},
        UpdateCase{"DeletingARowAboveKeepsTheSelectedNote", 2, "delete 0", "b, c", "c", false},
        UpdateCase{"ReorderingCarriesTheSelection", 0, "move 0 3", "b, c, a", "a", false}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

// A change deeper in refreshes only the count of the row it is under.
TEST_F(ColumnUpdates, AMoveUpdatesBothColumnsAndTheCountsOfTheParents) {
    auto siblingColumn = makeColumn(sibling);
    QAbstractItemModelTester tester(siblingColumn->listView()->model(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    const auto refreshed = refreshedRows(*rootColumn);
    document.userDidMove(*parent->children()[1], *sibling);
    EXPECT_EQ(shown(*column), "a, c");
    EXPECT_EQ(shown(*siblingColumn), "b");
    EXPECT_EQ(*refreshed, (std::vector<int>{1, 0}));
    add(sibling, "child");
    EXPECT_EQ(*refreshed, (std::vector<int>{1, 0, 1}));
}

TEST_F(ColumnUpdates, ChangedTextRedrawsAndRemeasuresTheRow) {
    const auto refreshed = refreshedRows(*column);
    const auto height = [this] {
        QApplication::processEvents();
        return column->listView()->visualRect(column->listView()->model()->index(1, 0)).height();
    };
    const int before = height();
    document.userDidModify(*parent->children()[1], "# A heading\nand\nthree\nlines");
    EXPECT_EQ(*refreshed, std::vector<int>{1});
    EXPECT_GT(height(), before);
}

TEST_F(ColumnUpdates, AnotherDocumentIsNeverHeard) {
    InMemoryPreferences otherPreferences;
    Document other(otherPreferences);
    other.userDidAdd(*NotebookNode::create(other.rootNode()->identifier(), "x"), *other.rootNode(),
                     0);
    EXPECT_EQ(shown(*rootColumn), "parent, sibling");
}

} // namespace
} // namespace quillery::testing
