#include "DocumentFixture.h"

#include <functional>

namespace quillery {
namespace {

using testing_support::DocumentFixture;
using Lines = std::vector<std::string>;

// "P" with children a, b, c and an empty "Q" under the root; an undo manager attached.
class Editing : public DocumentFixture {
protected:
    Editing() {
        m_document.setUndoManager(&m_undoManager);
        p = addNote(m_document.rootNode(), "P");
        a = addNote(p, "a");
        b = addNote(p, "b");
        c = addNote(p, "c");
        q = addNote(m_document.rootNode(), "Q");
    }
    ~Editing() override { m_undoManager.removeAllActions(); }

    NodePtr template_(const NodePtr& parent, std::string text) {
        return NotebookNode::create(parent->identifier(), std::move(text));
    }

    UndoManager m_undoManager;
    NodePtr p, a, b, c, q;
};

TEST_F(Editing, TextEditJournalsItsReverseAndNamesTheStep) {
    m_document.userDidModify(*b, "B");
    EXPECT_EQ(texts(p), (Lines{"a", "B", "c"}));
    ASSERT_EQ(m_document.diffs().size(), 1u);
    EXPECT_EQ(m_document.diffs()[0].identifier, b->identifier());
    EXPECT_EQ(m_document.diffs()[0].payload, (PlainDictionary{{"text", "B"}}));
    EXPECT_EQ(m_document.diffs()[0].timestamp, m_time);
    ASSERT_EQ(m_document.undoDiffs().size(), 1u);
    EXPECT_EQ(m_document.undoDiffs()[0].payload, (PlainDictionary{{"text", "b"}}));
    EXPECT_EQ(m_undoManager.undoActionName(), "Edit Text");
    EXPECT_EQ(m_updates.back().type, NodeUpdateType::changedText);
    EXPECT_EQ(m_document.changeCount(), 1);
}

TEST_F(Editing, EditingToTheSameTextIsStillAnEdit) {
    m_document.userDidModify(*b, "b");
    EXPECT_EQ(m_document.diffs().size(), 1u);
    EXPECT_TRUE(m_undoManager.canUndo());
}

TEST_F(Editing, AddRecordsTheTemplatesDictionaryAndPlacesTheNewNode) {
    NodePtr first = template_(p, "first");
    m_document.userDidAdd(*first, *p, 0);
    NodePtr last = template_(p, "last");
    m_document.userDidAdd(*last, *p, 4);
    NodePtr negative = template_(p, "neg");
    m_document.userDidAdd(*negative, *p, -1);
    EXPECT_EQ(texts(p), (Lines{"first", "a", "b", "c", "last", "neg"}));
    EXPECT_EQ(m_document.diffs()[0].payload, (PlainDictionary{{"identifier", first->identifier()},
                                                              {"text", "first"},
                                                              {"parent", p->identifier()},
                                                              {"before", a->identifier()}}));
    EXPECT_FALSE(m_document.diffs()[1].payload.contains("before"));
    EXPECT_EQ(m_updates[1].newChildIndex, 4u);
    NodePtr added = m_document.node(first->identifier());
    ASSERT_TRUE(added);
    EXPECT_NE(added, first); // the template itself never enters the tree
    EXPECT_EQ(m_document.undoDiffs()[0].payload, (PlainDictionary{{"destroy", true}}));
    EXPECT_EQ(m_undoManager.undoActionName(), "Add Note");
}

TEST_F(Editing, DeleteMovesUnderDeletedAndMoveNamesItsStep) {
    m_document.userDidMove(*a, *m_document.deletedRootNode());
    EXPECT_EQ(m_undoManager.undoActionName(), "Delete Note");
    EXPECT_EQ(m_updates.back().type, NodeUpdateType::changedParent);
    EXPECT_EQ(m_updates.back().newParentIdentifier, Identifier("deleted"));
    m_document.userDidMove(*b, *q);
    EXPECT_EQ(m_undoManager.undoActionName(), "Move Note");
    EXPECT_EQ(outline(), "root(P(c()) Q(b())) deleted(a())");
    EXPECT_EQ(m_document.diffs()[1].payload, (PlainDictionary{{"parent", q->identifier()}}));
    EXPECT_EQ(m_document.undoDiffs()[0].payload,
              (PlainDictionary{{"parent", p->identifier()}, {"before", b->identifier()}}));
    EXPECT_EQ(m_document.undoDiffs()[1].payload,
              (PlainDictionary{{"parent", p->identifier()}, {"before", c->identifier()}}));
}

TEST_F(Editing, MoveToAPositionNamesTheChildThere) {
    m_document.userDidMove(*c, *q);
    m_document.userDidMove(*a, *q, 0);
    EXPECT_EQ(texts(q), (Lines{"a", "c"}));
    EXPECT_EQ(m_document.diffs()[1].payload,
              (PlainDictionary{{"parent", q->identifier()}, {"before", c->identifier()}}));
}

TEST_F(Editing, MoveBeyondTheChildrenIsAProgrammingError) {
    EXPECT_DEATH(m_document.move(*a, *q, 0), "programming error");
}

TEST_F(Editing, ReorderCountsPositionsWithTheNoteStillInPlace) {
    m_document.userDidMove(*a, 3);
    EXPECT_EQ(texts(p), (Lines{"b", "c", "a"}));
    EXPECT_EQ(m_document.diffs()[0].payload, (PlainDictionary{{"after", c->identifier()}}));
    EXPECT_EQ(m_undoManager.undoActionName(), "Reorder Note");
    m_document.userDidMove(*b, 2);
    EXPECT_EQ(texts(p), (Lines{"c", "b", "a"}));
    EXPECT_EQ(m_document.diffs()[1].payload, (PlainDictionary{{"before", a->identifier()}}));
}

TEST_F(Editing, ReorderWithoutAnIndexedParentRecordsNothing) {
    NodePtr orphan = addNote(b, "orphan");
    m_document.applyDiff(DocumentDiff(m_time, b->identifier(), {{"destroy", true}}));
    m_document.userDidMove(*orphan, 0);
    EXPECT_TRUE(m_document.diffs().empty());
    EXPECT_FALSE(m_undoManager.canUndo());
}

// One user-level edit and what undo and redo of it announce.
struct EditKind {
    const char* name;
    std::function<void(Editing&, Document&)> edit;
    const char* actionName;
    NodeUpdateType announced;
    NodeUpdateType announcedOnUndo;

    friend void PrintTo(const EditKind& c, std::ostream* out) { *out << c.name; }
};

class UndoRedo : public Editing, public testing::WithParamInterface<EditKind> {
public:
    NodePtr nodeA() const { return a; }
    NodePtr nodeC() const { return c; }
    NodePtr nodeP() const { return p; }
    NodePtr nodeQ() const { return q; }
};

TEST_P(UndoRedo, UndoRestoresTheTreeAndRedoRepeatsTheSameRecord) {
    const EditKind& kind = GetParam();
    const std::string before = outline();
    kind.edit(*this, m_document);
    const std::string after = outline();
    ASSERT_NE(after, before);
    const DocumentDiff forward = m_document.diffs().back();
    EXPECT_EQ(m_undoManager.undoActionName(), kind.actionName);

    m_time += std::chrono::minutes(5);
    m_undoManager.undo();
    EXPECT_EQ(outline(), before);
    EXPECT_TRUE(m_document.diffs().empty());
    EXPECT_TRUE(m_document.undoDiffs().empty());
    ASSERT_EQ(m_document.redoDiffs().size(), 1u);
    EXPECT_EQ(m_document.redoDiffs()[0].payload, forward.payload);
    EXPECT_EQ(m_updates.back().type, kind.announcedOnUndo);
    EXPECT_EQ(m_undoManager.redoActionName(), kind.actionName);
    EXPECT_FALSE(m_undoManager.canUndo());
    EXPECT_EQ(m_document.changeCount(), 0);

    m_undoManager.redo();
    EXPECT_EQ(outline(), after);
    ASSERT_EQ(m_document.diffs().size(), 1u);
    EXPECT_EQ(m_document.diffs()[0].timestamp, forward.timestamp);
    EXPECT_EQ(m_document.diffs()[0].payload, forward.payload);
    EXPECT_EQ(m_document.undoDiffs().size(), 1u);
    EXPECT_TRUE(m_document.redoDiffs().empty());
    EXPECT_EQ(m_updates.back().type, kind.announced);
    EXPECT_EQ(m_undoManager.undoActionName(), kind.actionName);
    EXPECT_FALSE(m_undoManager.canRedo());
    EXPECT_EQ(m_document.changeCount(), 1);

    m_undoManager.undo();
    EXPECT_EQ(outline(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Editing, UndoRedo,
    testing::Values(
        EditKind{"EditText",
                 [](Editing& f, Document& d) {
                     d.userDidModify(*static_cast<UndoRedo&>(f).nodeA(), "A");
                 },
                 "Edit Text", NodeUpdateType::changedText, NodeUpdateType::changedText},
        EditKind{"AddNote",
                 [](Editing& f, Document& d) {
                     auto& undoRedo = static_cast<UndoRedo&>(f);
                     d.userDidAdd(*NotebookNode::create(undoRedo.nodeP()->identifier(), "new"),
                                  *undoRedo.nodeP(), 1);
                 },
                 "Add Note", NodeUpdateType::insertedNode, NodeUpdateType::destroyedNode},
        EditKind{"MoveNote",
                 [](Editing& f, Document& d) {
                     auto& undoRedo = static_cast<UndoRedo&>(f);
                     d.userDidMove(*undoRedo.nodeA(), *undoRedo.nodeQ());
                 },
                 "Move Note", NodeUpdateType::changedParent, NodeUpdateType::changedParent},
        EditKind{"DeleteLastNote",
                 [](Editing& f, Document& d) {
                     d.userDidMove(*static_cast<UndoRedo&>(f).nodeC(), *d.deletedRootNode());
                 },
                 "Delete Note", NodeUpdateType::changedParent, NodeUpdateType::changedParent},
        EditKind{
            "ReorderNote",
            [](Editing& f, Document& d) { d.userDidMove(*static_cast<UndoRedo&>(f).nodeA(), 2); },
            "Reorder Note", NodeUpdateType::movedWithinParent, NodeUpdateType::movedWithinParent}),
    [](const auto& caseInfo) { return std::string(caseInfo.param.name); });

TEST_F(Editing, UndoingAnAdditionDestroysTheNodeAndRedoBuildsANewOne) {
    NodePtr note = template_(p, "new");
    m_document.userDidAdd(*note, *p, 1);
    NodePtr added = m_document.node(note->identifier());
    m_lines.clear();
    m_undoManager.undo();
    EXPECT_EQ(m_lines, Lines{"Removing node..."});
    EXPECT_FALSE(m_document.node(note->identifier()));
    EXPECT_EQ(m_updates.back().oldChildIndex, 1u);
    m_undoManager.redo();
    NodePtr again = m_document.node(note->identifier());
    ASSERT_TRUE(again);
    EXPECT_NE(again, added);
    EXPECT_EQ(p->children()[1], again);
    EXPECT_EQ(m_document.undoDiffs().back().payload, (PlainDictionary{{"destroy", true}}));
}

TEST_F(Editing, TwoTextEditsUndoneRestoreTheFirstText) {
    m_document.userDidModify(*a, "one");
    m_document.userDidModify(*a, "two");
    m_undoManager.undo();
    m_undoManager.undo();
    EXPECT_EQ(a->text(), "a");
    EXPECT_TRUE(m_document.diffs().empty());
    EXPECT_EQ(m_document.redoDiffs().size(), 2u);
}

TEST_F(Editing, UndoingAReorderOfTheLastNoteNamesItself) {
    m_document.userDidMove(*c, 0);
    m_lines.clear();
    m_undoManager.undo();
    EXPECT_EQ(texts(p), (Lines{"a", "b", "c"}));
    EXPECT_EQ(m_lines, Lines{"Uh-oh: did move after but siblingIdentifier is not found here " +
                             c->identifier().toString()});
}

TEST_F(Editing, DeletedNoteComesBackBeforeItsOldNextSibling) {
    m_document.userDidMove(*a, *m_document.deletedRootNode());
    m_undoManager.undo();
    EXPECT_EQ(texts(p), (Lines{"a", "b", "c"}));
}

TEST_F(Editing, NewEditAfterUndoLeavesNoRedoThoughTheStackKeepsTheRecord) {
    m_document.userDidModify(*a, "x");
    m_undoManager.undo();
    m_document.userDidModify(*b, "y");
    EXPECT_FALSE(m_undoManager.canRedo());
    EXPECT_EQ(m_document.redoDiffs().size(), 1u);
}

TEST_F(Editing, EmptyStacksMakeUndoAndRedoDoNothing) {
    m_document.undo();
    m_document.redo();
    EXPECT_TRUE(m_updates.empty());
    EXPECT_FALSE(m_undoManager.canUndo());
    EXPECT_FALSE(m_undoManager.canRedo());
    EXPECT_EQ(m_document.changeCount(), 0);
}

TEST_F(Editing, EditMadeWhileAnUndoIsAnnouncedIsNeitherJournaledNorUndoable) {
    m_document.userDidModify(*a, "x");
    bool reacted = false;
    m_document.addObserver([&](const DocumentUpdate& update) {
        if (reacted || update.node != a)
            return;
        reacted = true;
        EXPECT_FALSE(m_document.journalingEnabled());
        EXPECT_EQ(m_document.diffs().size(), 1u); // the undone edit is still last
        m_document.userDidModify(*b, "side effect");
    });
    m_undoManager.undo();
    EXPECT_TRUE(reacted);
    EXPECT_EQ(b->text(), "side effect");
    EXPECT_TRUE(m_document.diffs().empty());
    EXPECT_TRUE(m_document.undoDiffs().empty());
    EXPECT_FALSE(m_undoManager.canUndo());
    EXPECT_TRUE(m_undoManager.canRedo());
    EXPECT_EQ(m_undoManager.redoActionName(), "Edit Text");
}

TEST_F(Editing, WithoutAnUndoManagerEditsStillJournalAndUndoWorksDirectly) {
    m_document.setUndoManager(nullptr);
    m_document.userDidModify(*a, "x");
    EXPECT_EQ(m_document.undoDiffs().size(), 1u);
    m_document.undo();
    EXPECT_EQ(a->text(), "a");
    m_document.redo();
    EXPECT_EQ(a->text(), "x");
    EXPECT_FALSE(m_undoManager.canUndo());
}

} // namespace
} // namespace quillery
