#include "DocumentFixture.h"

#include <functional>
#include <optional>

namespace quillery {
namespace {

using testing_support::SmallNotebook;

// One edit of the user's, the record it journals, the tree after it, the name of its undo step,
// and what it and its undo announce.
struct EditCase {
    const char* name;
    std::function<void(SmallNotebook&)> edit;
    const char* journaled; // as SmallNotebook::record reads it
    const char* outline;
    const char* actionName;
    NodeUpdateType announced;
    NodeUpdateType announcedOnUndo;

    friend void PrintTo(const EditCase& c, std::ostream* out) { *out << c.name; }
};

// A note "new" under the parent, as the columns make one before adding it.
NodePtr newNote(SmallNotebook& n, const NodePtr& parent) {
    return std::make_shared<NotebookNode>(n.named("new"), parent->identifier(), "new");
}

class Editing : public SmallNotebook, public testing::WithParamInterface<EditCase> {};

TEST_P(Editing, JournalsOneRecordThatUndoTakesBackAndRedoRepeats) {
    const EditCase& edit = GetParam();
    const std::string before = outline();
    edit.edit(*this);
    EXPECT_EQ(outline(), edit.outline);
    ASSERT_EQ(m_document.diffs().size(), 1u);
    const DocumentDiff forward = m_document.diffs().back();
    EXPECT_EQ(forward.payload, record(edit.journaled).payload);
    EXPECT_EQ(forward.timestamp, m_time);
    EXPECT_EQ(m_updates.back().type, edit.announced);
    EXPECT_EQ(m_undoManager.undoActionName(), edit.actionName);
    EXPECT_EQ(m_document.changeCount(), 1);

    m_time += std::chrono::minutes(5);
    m_undoManager.undo();
    EXPECT_EQ(outline(), before);
    EXPECT_TRUE(m_document.diffs().empty());
    EXPECT_EQ(m_updates.back().type, edit.announcedOnUndo);
    EXPECT_EQ(m_undoManager.redoActionName(), edit.actionName);
    EXPECT_EQ(m_document.changeCount(), 0);

    m_undoManager.redo();
    EXPECT_EQ(outline(), edit.outline);
    ASSERT_EQ(m_document.diffs().size(), 1u);
    EXPECT_EQ(m_document.diffs()[0].timestamp, forward.timestamp);
    EXPECT_EQ(m_document.diffs()[0].payload, forward.payload);
    EXPECT_EQ(m_updates.back().type, edit.announced);
    EXPECT_EQ(m_document.changeCount(), 1);
    m_undoManager.undo();
    EXPECT_EQ(outline(), before);
}

constexpr NodeUpdateType kChanged = NodeUpdateType::changedText;
constexpr NodeUpdateType kInserted = NodeUpdateType::insertedNode;
constexpr NodeUpdateType kDestroyed = NodeUpdateType::destroyedNode;
constexpr NodeUpdateType kMoved = NodeUpdateType::movedWithinParent;
constexpr NodeUpdateType kReparented = NodeUpdateType::changedParent;

INSTANTIATE_TEST_SUITE_P(
    Cases, Editing,
    testing::Values(
        EditCase{"EditText", [](SmallNotebook& n) { n.m_document.userDidModify(*n.b, "B"); },
                 "@b text=B", "root(P(a() B() c()) Q()) deleted()", "Edit Text", kChanged,
                 kChanged},
        EditCase{"EditToTheSameText",
                 [](SmallNotebook& n) { n.m_document.userDidModify(*n.b, "b"); }, "@b text=b",
                 "root(P(a() b() c()) Q()) deleted()", "Edit Text", kChanged, kChanged},
        EditCase{"AddFirst",
                 [](SmallNotebook& n) { n.m_document.userDidAdd(*newNote(n, n.P), *n.P, 0); },
                 "@new identifier=@new text=new parent=@P before=@a",
                 "root(P(new() a() b() c()) Q()) deleted()", "Add Note", kInserted, kDestroyed},
        EditCase{"AddWithoutAPlace",
                 [](SmallNotebook& n) { n.m_document.userDidAdd(*newNote(n, n.Q), *n.Q, -1); },
                 "@new identifier=@new text=new parent=@Q",
                 "root(P(a() b() c()) Q(new())) deleted()", "Add Note", kInserted, kDestroyed},
        EditCase{"Move", [](SmallNotebook& n) { n.m_document.userDidMove(*n.a, *n.Q); },
                 "@a parent=@Q", "root(P(b() c()) Q(a())) deleted()", "Move Note", kReparented,
                 kReparented},
        EditCase{"MoveToAPlace", [](SmallNotebook& n) { n.m_document.userDidMove(*n.c, *n.P, 0); },
                 "@c parent=@P before=@a", "root(P(c() a() b()) Q()) deleted()", "Move Note",
                 kReparented, kReparented},
        EditCase{"MoveToTheDeletedNotes",
                 [](SmallNotebook& n) {
                     n.m_document.userDidMove(*n.c, *n.m_document.deletedRootNode());
                 },
                 "@c parent=@deleted", "root(P(a() b()) Q()) deleted(c())", "Delete Note",
                 kReparented, kReparented},
        EditCase{"Delete", [](SmallNotebook& n) { n.m_document.userDidDelete(*n.b); },
                 "@b parent=@deleted deleted_from=@P deleted_after=@a deleted_before=@c",
                 "root(P(a() c()) Q()) deleted(b())", "Delete Note", kReparented, kReparented},
        EditCase{"ReorderToTheEnd", [](SmallNotebook& n) { n.m_document.userDidMove(*n.a, 3); },
                 "@a after=@c", "root(P(b() c() a()) Q()) deleted()", "Reorder Note", kMoved,
                 kMoved},
        EditCase{"ReorderCountsWithTheNoteInPlace",
                 [](SmallNotebook& n) { n.m_document.userDidMove(*n.a, 2); }, "@a before=@c",
                 "root(P(b() a() c()) Q()) deleted()", "Reorder Note", kMoved, kMoved}),
    [](const auto& caseInfo) { return std::string(caseInfo.param.name); });

// An edit of the user's, then a record merged from elsewhere, then Undo: it takes back exactly the
// edit, or refuses and leaves the edit in the log, and the step before it still undoes.
struct MergedCase {
    const char* name;
    std::function<void(SmallNotebook&)> edit;
    const char* elsewhere; // as SmallNotebook::record reads it
    std::optional<UndoObstacle> obstacle;
    const char* outline; // after the undo of the edit
};

class UndoAfterMerge : public SmallNotebook, public testing::WithParamInterface<MergedCase> {};

TEST_P(UndoAfterMerge, TakesBackExactlyTheEditOrSaysWhyNot) {
    const MergedCase& merged = GetParam();
    std::optional<UndoObstacle> refused;
    m_document.setUndoRefusedHandler([&](UndoObstacle why) { refused = why; });
    m_document.userDidModify(*a, "A");
    merged.edit(*this);
    const DocumentDiff edit = m_document.diffs().back();
    m_document.applyDiff(record(merged.elsewhere), true);

    m_undoManager.undo();
    EXPECT_EQ(refused, merged.obstacle);
    EXPECT_EQ(outline(), merged.outline);
    m_undoManager.undo();
    EXPECT_EQ(a->text(), "a");
    // A refused edit stays in the log, as it stays in the notebook.
    const std::vector<PlainDictionary> logged = {edit.payload};
    std::vector<PlainDictionary> log;
    for (const DocumentDiff& diff : m_document.diffs())
        log.push_back(diff.payload);
    EXPECT_EQ(log, merged.obstacle ? logged : std::vector<PlainDictionary>{});
}

INSTANTIATE_TEST_SUITE_P(
    Cases, UndoAfterMerge,
    testing::Values(
        MergedCase{"EditOfANoteMovedElsewhere",
                   [](SmallNotebook& n) { n.m_document.userDidModify(*n.b, "B"); }, "@b parent=@Q",
                   std::nullopt, "root(P(A() c()) Q(b())) deleted()"},
        MergedCase{"EditOfANoteGoneElsewhere",
                   [](SmallNotebook& n) { n.m_document.userDidModify(*n.b, "B"); },
                   "@b destroy=true", UndoObstacle::noteGone, "root(P(A() c()) Q()) deleted()"},
        MergedCase{"AdditionThatGainedNotesElsewhere",
                   [](SmallNotebook& n) { n.m_document.userDidAdd(*newNote(n, n.Q), *n.Q, -1); },
                   "@x identifier=@x text=x parent=@new", UndoObstacle::notesAddedBeneath,
                   "root(P(A() b() c()) Q(new(x()))) deleted()"},
        MergedCase{"MoveFromAParentGoneElsewhere",
                   [](SmallNotebook& n) { n.m_document.userDidMove(*n.c, *n.Q); },
                   "@P destroy=true", UndoObstacle::placeGone, "root(Q(c())) deleted()"}),
    [](const auto& caseInfo) { return std::string(caseInfo.param.name); });

TEST_F(SmallNotebook, AMoveBeyondTheChildrenIsAProgrammingError) {
    EXPECT_DEATH(m_document.userDidMove(*a, *Q, 0), "programming error");
}

TEST_F(SmallNotebook, AReorderWithoutAnIndexedParentRecordsNothing) {
    NodePtr orphan = addNote(b, "orphan");
    m_document.applyDiff(record("@b destroy=true"));
    m_document.userDidMove(*orphan, 0);
    EXPECT_TRUE(m_document.diffs().empty());
    EXPECT_FALSE(m_undoManager.canUndo());
}

TEST_F(SmallNotebook, AnEditMadeWhileAnUndoIsAnnouncedIsNeitherJournaledNorUndoable) {
    m_document.userDidModify(*a, "x");
    m_document.addObserver([&](const DocumentUpdate& update) {
        if (update.node == a && b->text() == "b")
            m_document.userDidModify(*b, "side effect");
    });
    m_undoManager.undo();
    EXPECT_EQ(b->text(), "side effect");
    EXPECT_TRUE(m_document.diffs().empty());
    EXPECT_FALSE(m_undoManager.canUndo());
    m_undoManager.redo();
    EXPECT_EQ(a->text(), "x");
    EXPECT_EQ(m_document.diffs().size(), 1u);
}

} // namespace
} // namespace quillery
