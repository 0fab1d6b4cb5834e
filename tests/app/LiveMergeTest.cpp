#include "app/LiveMerge.h"

#include "app/AppFixture.h"
#include "app/MessageBar.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <fstream>

namespace quillery {
namespace {

using namespace std::chrono_literals;

// Another installation writes the package of an open window.
class LiveMergeTest : public AppFixture {
protected:
    // The other installation adds a note at the index of the top level, stamped by its clock: a
    // minute ahead unless told, so that its record comes after everything in the package.
    // Under the top-level note at "under", when given.
    void addElsewhere(
        const std::filesystem::path& location, const std::string& text, long at,
        Document::Clock clock = [] { return CurrentTime() + 1min; }, long under = -1) {
        InMemoryPreferences elsewhere;
        Document other(elsewhere, &codec, std::move(clock));
        ASSERT_FALSE(package::read(other, location, codec).has_value());
        const NodePtr& root = under < 0
                                  ? other.rootNode()
                                  : other.rootNode()->children()[static_cast<std::size_t>(under)];
        other.userDidAdd(*NotebookNode::create(root->identifier(), text), *root, at);
        ASSERT_FALSE(package::saveInPlace(other).has_value());
    }

    // The window looks at its package at once and is done with what it found.
    static void merge(DocumentWindow& window) {
        QSignalSpy settled(window.liveMerge(), &LiveMerge::settled);
        window.liveMerge()->watcher().checkNow();
        ASSERT_TRUE(settled.wait(10000));
    }

    static std::vector<std::string> shown(NoteColumn* column) {
        return texts(*column->parentNote());
    }
};

TEST_F(LiveMergeTest, LaterNotesJoinInPlaceAndTheSelectionStays) {
    const auto location = makePackage("Trip.quillery", {"A", "B", "C"});
    DocumentWindow& window = *controller.openDocument(location);
    NoteColumn* first = window.columnRow()->column(0);
    first->selectRow(2);

    addElsewhere(location, "New", 1);
    merge(window);

    EXPECT_EQ(window.columnRow()->column(0), first) << "no column was rebuilt";
    EXPECT_EQ(rowCount(first), 4);
    EXPECT_EQ(shown(first), (std::vector<std::string>{"A", "New", "B", "C"}));
    EXPECT_EQ(first->selectedNode()->text(), "C");
}

TEST_F(LiveMergeTest, UndoAfterAMergeTakesBackOnlyTheLocalEdit) {
    const auto location = makePackage("Trip.quillery", {"A"});
    DocumentWindow& window = *controller.openDocument(location);
    window.setAutosaveDelay(1h);
    addNote(window, "Mine");

    addElsewhere(location, "Theirs", -1);
    merge(window);
    window.undoManager().undo();

    EXPECT_EQ(shown(window.columnRow()->column(0)), (std::vector<std::string>{"A", "Theirs"}));
}

TEST_F(LiveMergeTest, UndoThatWouldTakeNotesAddedElsewhereIsRefusedAndSaysWhy) {
    const auto location = makePackage("Trip.quillery", {"A"});
    DocumentWindow& window = *controller.openDocument(location);
    addNote(window, "Mine");
    ASSERT_TRUE(window.save());
    addElsewhere(
        location, "Theirs", -1, [] { return CurrentTime() + 1min; }, 1);
    merge(window);

    action(window, "actionUndo").trigger();

    EXPECT_EQ(shown(window.columnRow()->column(0)), (std::vector<std::string>{"A", "Mine"}));
    EXPECT_TRUE(window.messageBar()->text().contains(QStringLiteral("Couldn't undo “Add Note”")));
    EXPECT_FALSE(window.undoManager().canUndo());
}

TEST_F(LiveMergeTest, EarlierNotesAreReplayedAndTheSameColumnsOpenAgain) {
    const auto location = makePackage("Trip.quillery", {"A", "B"});
    DocumentWindow& window = *controller.openDocument(location);
    const NodePtr b = window.document().rootNode()->children()[1];
    window.document().userDidAdd(*NotebookNode::create(b->identifier(), "B1"), *b, -1);
    ASSERT_TRUE(window.save());
    window.columnRow()->column(0)->selectRow(1);
    window.columnRow()->column(1)->selectRow(0);
    QPointer<NoteColumn> before = window.columnRow()->column(0);

    addElsewhere(location, "Old", 0, [] { return CurrentTime() - 24h * 365; });
    merge(window);

    // The row is rebuilt over the replayed tree.
    EXPECT_TRUE(before.isNull());
    ColumnRow& split = *window.columnRow();
    EXPECT_EQ(shown(split.column(0)), (std::vector<std::string>{"Old", "A", "B"}));
    ASSERT_NE(split.column(1), nullptr);
    EXPECT_EQ(split.column(0)->selectedNode()->text(), "B");
    EXPECT_EQ(split.column(1)->selectedNode()->text(), "B1");
}

TEST_F(LiveMergeTest, ADamagedJournalLeavesTheNotebookAndIsNamedInTheWindow) {
    const auto location = makePackage("Trip.quillery", {"A"});
    DocumentWindow& window = *controller.openDocument(location);

    std::ofstream(location / "Broken.journal") << "{ not json";
    merge(window);

    EXPECT_TRUE(window.messageBar()->isVisible());
    EXPECT_TRUE(window.messageBar()->text().contains(QStringLiteral("Broken.journal")));
    EXPECT_EQ(shown(window.columnRow()->column(0)), std::vector<std::string>{"A"});
}

} // namespace
} // namespace quillery
