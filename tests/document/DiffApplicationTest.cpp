#include "DocumentFixture.h"

namespace quillery {
namespace {

using testing_support::DocumentFixture;
using Lines = std::vector<std::string>;

const std::string kNoParent = "Couldn't find parent! All nodes must have a parent.";

// A parent "P" with children a, b, c under the root, and an empty "Q".
class DiffApplication : public DocumentFixture {
protected:
    DiffApplication() {
        p = addNote(m_document.rootNode(), "P");
        a = addNote(p, "a");
        b = addNote(p, "b");
        c = addNote(p, "c");
        q = addNote(m_document.rootNode(), "Q");
    }

    const DocumentUpdate& onlyUpdate() {
        EXPECT_EQ(m_updates.size(), 1u);
        return m_updates.back();
    }

    NodePtr p, a, b, c, q;
};

TEST_F(DiffApplication, CreationAppendsAndAnnouncesItsIndex) {
    const Identifier id = Identifier::makeRandom();
    apply(id, {{"identifier", id}, {"text", "d"}, {"parent", p->identifier()}});
    EXPECT_EQ(texts(p), (Lines{"a", "b", "c", "d"}));
    const DocumentUpdate& update = onlyUpdate();
    EXPECT_EQ(update.type, NodeUpdateType::insertedNode);
    EXPECT_EQ(update.node, m_document.node(id));
    EXPECT_EQ(update.newChildIndex, 3u);
    EXPECT_FALSE(update.oldChildIndex || update.oldParentIdentifier || update.newParentIdentifier);
}

TEST_F(DiffApplication, CreationBeforeASiblingTakesItsPlace) {
    apply(Identifier::makeRandom(),
          {{"text", "new"}, {"parent", p->identifier()}, {"before", b->identifier()}});
    EXPECT_EQ(texts(p), (Lines{"a", "new", "b", "c"}));
    EXPECT_EQ(onlyUpdate().newChildIndex, 1u);
}

TEST_F(DiffApplication, CreationBeforeAnUnknownSiblingAppendsSilently) {
    apply(Identifier::makeRandom(),
          {{"text", "new"}, {"parent", p->identifier()}, {"before", "x"}});
    EXPECT_EQ(texts(p), (Lines{"a", "b", "c", "new"}));
    EXPECT_EQ(onlyUpdate().newChildIndex, 3u);
    EXPECT_TRUE(m_lines.empty());
}

TEST_F(DiffApplication, CreationUnderAnUnknownParentChangesNothing) {
    const Identifier id = Identifier::makeRandom();
    const std::size_t count = m_document.nodeCount();
    apply(id, {{"text", "lost"}, {"parent", Identifier::makeRandom()}});
    EXPECT_EQ(m_lines, Lines{kNoParent});
    EXPECT_FALSE(m_document.node(id));
    EXPECT_EQ(m_document.nodeCount(), count);
    EXPECT_TRUE(m_updates.empty());
}

TEST_F(DiffApplication, CreationWithoutTextOrParentIsDroppedSilently) {
    apply(Identifier::makeRandom(), {{"parent", p->identifier()}});
    apply(Identifier::makeRandom(), {{"text", "t"}});
    EXPECT_EQ(texts(p).size(), 3u);
    EXPECT_TRUE(m_updates.empty());
    EXPECT_TRUE(m_lines.empty());
}

TEST_F(DiffApplication, CreationOfAnIndexedIdentifierIsAChange) {
    apply(a->identifier(), {{"identifier", a->identifier()},
                            {"text", "a2"},
                            {"parent", p->identifier()},
                            {"image", "K"},
                            {"url", "u"}});
    EXPECT_EQ(texts(p), (Lines{"b", "c", "a2"}));
    EXPECT_EQ(m_lines, (Lines{"Unrecognized diff", "Unrecognized diff"}));
    const DocumentUpdate& update = onlyUpdate();
    EXPECT_EQ(update.type, NodeUpdateType::changedParent);
    EXPECT_EQ(update.oldParentIdentifier, p->identifier());
    EXPECT_EQ(update.newParentIdentifier, p->identifier());
    EXPECT_EQ(update.oldChildIndex, 0u);
    EXPECT_EQ(update.newChildIndex, 2u);
}

TEST_F(DiffApplication, DestroyOfFalseDoesNothing) {
    apply(b->identifier(), {{"destroy", false}});
    EXPECT_EQ(texts(p), (Lines{"a", "b", "c"}));
    EXPECT_TRUE(m_updates.empty());
    EXPECT_TRUE(m_lines.empty());
}

TEST_F(DiffApplication, DestroyTakesTheNodeOutButLeavesItsDescendantsIndexed) {
    NodePtr grandchild = addNote(b, "g");
    apply(b->identifier(), {{"destroy", true}});
    EXPECT_EQ(m_lines, Lines{"Removing node..."});
    EXPECT_EQ(texts(p), (Lines{"a", "c"}));
    EXPECT_FALSE(m_document.node(b->identifier()));
    EXPECT_EQ(m_document.node(grandchild->identifier()), grandchild);
    const DocumentUpdate& update = onlyUpdate();
    EXPECT_EQ(update.type, NodeUpdateType::destroyedNode);
    EXPECT_EQ(update.node, b);
    EXPECT_EQ(update.oldChildIndex, 1u);
    EXPECT_FALSE(update.newChildIndex);
}

TEST_F(DiffApplication, DestroyOfANodeOutsideTheTreeUnindexesItQuietly) {
    NodePtr orphan = addNote(b, "orphan");
    apply(b->identifier(), {{"destroy", true}});
    m_updates.clear();
    apply(orphan->identifier(), {{"destroy", true}});
    EXPECT_FALSE(m_document.node(orphan->identifier()));
    EXPECT_TRUE(m_updates.empty());
}

TEST_F(DiffApplication, PictureBytesLeaveWithADestroyedNoteAndComeBackWithIt) {
    const Identifier key = m_document.addImage(nullptr, {1, 2, 3}, "png");
    const Identifier id = Identifier::makeRandom();
    const DocumentDiff creation(m_time, id, {{"text", ""}, {"parent", "root"}, {"image", key}});
    m_document.applyDiff(creation);
    apply(id, {{"destroy", true}});
    EXPECT_FALSE(m_document.images().newImageData().contains(key));
    EXPECT_TRUE(m_document.images().temporarilyDeletedData().contains(key));
    m_document.applyDiff(creation);
    EXPECT_EQ(m_document.images().newImageData().at(key).data,
              (std::vector<std::uint8_t>{1, 2, 3}));
    EXPECT_TRUE(m_document.images().temporarilyDeletedData().empty());
    EXPECT_EQ(m_document.node(id)->imageIdentifier(), key);
}

TEST_F(DiffApplication, RootsSurviveDestroyAndMoveRecords) {
    apply(Identifier("root"), {{"destroy", true}});
    apply(Identifier("deleted"), {{"parent", p->identifier()}});
    EXPECT_EQ(m_document.node(Identifier("root")), m_document.rootNode());
    EXPECT_EQ(outline(), "root(P(a() b() c()) Q()) deleted()");
}

TEST_F(DiffApplication, ChangeWithNothingToDoStillAnnouncesChangedText) {
    apply(a->identifier(), {{"identifier", a->identifier()}, {"timestamp", "whenever"}});
    const DocumentUpdate& update = onlyUpdate();
    EXPECT_EQ(update.type, NodeUpdateType::changedText);
    EXPECT_EQ(update.node, a);
    EXPECT_FALSE(update.oldChildIndex || update.newChildIndex || update.oldParentIdentifier ||
                 update.newParentIdentifier);
}

TEST_F(DiffApplication, BadTextAndUnknownKeysAreReportedOneLineEach) {
    apply(
        a->identifier(),
        {{"text", RawJson{"3"}}, {"color", "red"}, {"destroy", "yes"}, {"after", b->identifier()}});
    EXPECT_EQ(m_lines, (Lines{"Bad text.", "Unrecognized diff", "Unrecognized diff"}));
    EXPECT_EQ(texts(p), (Lines{"b", "a", "c"}));
    EXPECT_EQ(onlyUpdate().type, NodeUpdateType::movedWithinParent);
}

struct ReorderCase {
    const char* name;
    char moving;
    const char* key;
    char sibling; // '-' names a node that is not there
    Lines order;
    std::size_t oldIndex;
    std::size_t newIndex;
    bool siblingMissing;

    friend void PrintTo(const ReorderCase& c, std::ostream* out) { *out << c.name; }
};

class Reorder : public DiffApplication, public testing::WithParamInterface<ReorderCase> {
protected:
    NodePtr named(char name) { return name == 'a' ? a : name == 'b' ? b : c; }
};

TEST_P(Reorder, PlacesTheNodeByItsNeighbour) {
    const ReorderCase& test = GetParam();
    NodePtr moving = named(test.moving);
    const Identifier sibling =
        test.sibling == '-' ? Identifier("missing") : named(test.sibling)->identifier();
    apply(moving->identifier(), {{test.key, sibling}});
    EXPECT_EQ(texts(p), test.order);
    const DocumentUpdate& update = onlyUpdate();
    EXPECT_EQ(update.type, NodeUpdateType::movedWithinParent);
    EXPECT_EQ(update.oldChildIndex, test.oldIndex);
    EXPECT_EQ(update.newChildIndex, test.newIndex);
    if (test.siblingMissing)
        EXPECT_EQ(m_lines, Lines{"Uh-oh: did move " + std::string(test.key) +
                                 " but siblingIdentifier is not found here " + sibling.toString()});
    else
        EXPECT_TRUE(m_lines.empty());
}

INSTANTIATE_TEST_SUITE_P(
    DiffApplication, Reorder,
    testing::Values(
        ReorderCase{"FirstAfterLast", 'a', "after", 'c', {"b", "c", "a"}, 0, 2, false},
        ReorderCase{"LastBeforeFirst", 'c', "before", 'a', {"c", "a", "b"}, 2, 0, false},
        ReorderCase{"AfterPredecessor", 'b', "after", 'a', {"a", "b", "c"}, 1, 1, false},
        ReorderCase{"BeforeNext", 'a', "before", 'b', {"a", "b", "c"}, 0, 0, false},
        ReorderCase{"AfterItself", 'a', "after", 'a', {"b", "c", "a"}, 0, 2, true},
        ReorderCase{"BeforeMissing", 'b', "before", '-', {"a", "c", "b"}, 1, 2, true}),
    [](const auto& caseInfo) { return std::string(caseInfo.param.name); });

TEST_F(DiffApplication, ReorderOfANodeOutsideItsParentMovesNothing) {
    NodePtr orphan = addNote(b, "orphan");
    apply(b->identifier(), {{"destroy", true}});
    m_updates.clear();
    apply(orphan->identifier(), {{"before", "x"}});
    EXPECT_EQ(onlyUpdate().type, NodeUpdateType::changedText);
    EXPECT_TRUE(m_lines.size() == 1); // only the destroy's line
}

TEST_F(DiffApplication, ReparentAppendsToTheNewParent) {
    addNote(q, "x");
    addNote(q, "y");
    apply(b->identifier(), {{"parent", q->identifier()}});
    EXPECT_EQ(texts(p), (Lines{"a", "c"}));
    EXPECT_EQ(texts(q), (Lines{"x", "y", "b"}));
    EXPECT_EQ(b->parentIdentifier(), q->identifier());
    const DocumentUpdate& update = onlyUpdate();
    EXPECT_EQ(update.type, NodeUpdateType::changedParent);
    EXPECT_EQ(update.oldChildIndex, 1u);
    EXPECT_EQ(update.newChildIndex, 2u);
    EXPECT_EQ(update.oldParentIdentifier, p->identifier());
    EXPECT_EQ(update.newParentIdentifier, q->identifier());
}

TEST_F(DiffApplication, ReparentBeforeASiblingIsNotAlsoAReorder) {
    NodePtr x = addNote(q, "x");
    apply(c->identifier(), {{"before", x->identifier()}, {"parent", q->identifier()}});
    EXPECT_EQ(texts(q), (Lines{"c", "x"}));
    EXPECT_EQ(onlyUpdate().newChildIndex, 0u);
    EXPECT_TRUE(m_lines.empty());
}

TEST_F(DiffApplication, DeletingIsAnOrdinaryReparentThatKeepsChildren) {
    addNote(a, "child");
    apply(a->identifier(), {{"parent", "deleted"}});
    EXPECT_EQ(outline(), "root(P(b() c()) Q()) deleted(a(child()))");
    EXPECT_EQ(onlyUpdate().newParentIdentifier, Identifier("deleted"));
}

TEST_F(DiffApplication, ReparentToAnUnknownParentKeepsTheNodeButAppliesOtherKeys) {
    apply(b->identifier(), {{"parent", "nowhere"}, {"text", "B"}});
    EXPECT_EQ(m_lines, Lines{kNoParent});
    EXPECT_EQ(texts(p), (Lines{"a", "B", "c"}));
    EXPECT_EQ(b->parentIdentifier(), p->identifier());
    EXPECT_EQ(onlyUpdate().type, NodeUpdateType::changedText);
}

TEST_F(DiffApplication, ReparentIntoItselfOrItsSubtreeIsRefused) {
    NodePtr child = addNote(a, "child");
    NodePtr grandchild = addNote(child, "grandchild");
    apply(a->identifier(), {{"parent", a->identifier()}});
    apply(a->identifier(), {{"parent", grandchild->identifier()}});
    EXPECT_EQ(m_lines, Lines(2, "Refusing to move a note into itself."));
    EXPECT_EQ(outline(), "root(P(a(child(grandchild())) b() c()) Q()) deleted()");
    EXPECT_EQ(m_updates.back().type, NodeUpdateType::changedText);
}

TEST_F(DiffApplication, NotesMovedIntoEachOtherOnTwoMachinesKeepTheirBranch) {
    // Each machine moved one note under the other; replayed in turn, the second move is refused.
    std::vector<DocumentDiff> merged{
        DocumentDiff(m_time, a->identifier(), {{"parent", b->identifier()}}),
        DocumentDiff(m_time, b->identifier(), {{"parent", a->identifier()}})};
    m_document.loadData(merged, {});
    EXPECT_EQ(outline(), "root(P(b(a()) c()) Q()) deleted()");
}

TEST(DocumentBasics, NewDocumentHasTwoIndexedRootsAndSharesTheClientIdentifier) {
    InMemoryPreferences preferences;
    Document first(preferences);
    EXPECT_EQ(first.nodeCount(), 2u);
    EXPECT_EQ(first.node(Identifier("root")), first.rootNode());
    EXPECT_EQ(first.node(Identifier("deleted")), first.deletedRootNode());
    EXPECT_TRUE(first.rootNode()->parentIdentifier() == std::string_view("none"));
    EXPECT_TRUE(first.deletedRootNode()->parentIdentifier() == std::string_view("none"));
    EXPECT_EQ(preferences.string(kClientIdentifierKey), first.clientIdentifier().toString());
    EXPECT_EQ(preferences.synchronizeCount(), 1);
    Document second(preferences);
    EXPECT_EQ(second.clientIdentifier(), first.clientIdentifier());
    EXPECT_EQ(preferences.synchronizeCount(), 1);
}

class Ancestry : public DiffApplication {};

TEST_F(Ancestry, RootsAreAncestorsOfEverythingAndNothingIsItsOwn) {
    NodePtr child = addNote(a, "child");
    apply(q->identifier(), {{"parent", "deleted"}});
    EXPECT_TRUE(m_document.isNode(*m_document.rootNode(), *q));
    EXPECT_TRUE(m_document.isNode(*m_document.rootNode(), *m_document.deletedRootNode()));
    EXPECT_TRUE(m_document.isNode(*m_document.deletedRootNode(), *child));
    EXPECT_TRUE(m_document.isNode(*p, *child));
    EXPECT_TRUE(m_document.isNode(*a, *child));
    EXPECT_FALSE(m_document.isNode(*a, *a));
    EXPECT_FALSE(m_document.isNode(*child, *a));
    EXPECT_FALSE(m_document.isNode(*b, *child));
    EXPECT_FALSE(m_document.isNode(*a, *m_document.rootNode()));
    EXPECT_FALSE(m_document.isNode(*a, *m_document.deletedRootNode()));
}

TEST_F(Ancestry, ParentCycleFromAForeignJournalEndsTheWalk) {
    // Destroying b leaves its child indexed; re-creating b under that child closes a loop that
    // no root reaches.
    NodePtr child = addNote(b, "child");
    apply(b->identifier(), {{"destroy", true}});
    apply(b->identifier(), {{"text", "b"}, {"parent", child->identifier()}});
    EXPECT_FALSE(m_document.isNode(*a, *child));
    apply(a->identifier(), {{"parent", child->identifier()}});
    EXPECT_EQ(a->parentIdentifier(), child->identifier());
    apply(child->identifier(), {{"parent", a->identifier()}});
    EXPECT_EQ(m_lines.back(), "Refusing to move a note into itself.");
}

TEST_F(Ancestry, ANoteWhoseParentWasDestroyedAndCreatedAgainWalksUpTheNewParent) {
    // child stays under the identifier a; once a is created again under Q, child lies within Q.
    NodePtr child = addNote(a, "child");
    const Identifier aIdentifier = a->identifier();
    apply(aIdentifier, {{"destroy", true}});
    a.reset();
    apply(aIdentifier, {{"text", "a again"}, {"parent", q->identifier()}});
    EXPECT_TRUE(m_document.isNode(*q, *child));
    EXPECT_FALSE(m_document.isNode(*p, *child));
    apply(q->identifier(), {{"parent", child->identifier()}});
    EXPECT_EQ(m_lines.back(), "Refusing to move a note into itself.");
    EXPECT_EQ(q->parentIdentifier(), Identifier("root"));
}

TEST_F(Ancestry, AChildlessNoteIsNotMovedUnderNotesItsEarlierSelfLeftBehind) {
    NodePtr child = addNote(a, "child");
    const Identifier aIdentifier = a->identifier();
    apply(aIdentifier, {{"destroy", true}});
    apply(aIdentifier, {{"text", "a again"}, {"parent", "root"}});
    ASSERT_TRUE(m_document.node(aIdentifier)->children().empty());

    apply(aIdentifier, {{"parent", child->identifier()}});

    EXPECT_EQ(m_lines.back(), "Refusing to move a note into itself.");
    EXPECT_EQ(m_document.node(aIdentifier)->parentIdentifier(), Identifier("root"));
}

// A node indexed over by another of the same identifier stays in its parent's children until a
// record about the identifier takes it out; its children must not be left pointing at it. Run
// under AddressSanitizer, a stale pointer here is a use after free.
TEST_F(Ancestry, ANodeIndexedOverLeavesNoStaleParentBehindWhenItGoes) {
    NodePtr grandchild = addNote(addNote(a, "child"), "grandchild");
    const Identifier childIdentifier = grandchild->parentIdentifier();
    m_document.addLookup(std::make_shared<NotebookNode>(childIdentifier, a->identifier(), "new"));

    apply(childIdentifier, {{"parent", "root"}});
    EXPECT_FALSE(m_document.isNode(*a, *grandchild));
    EXPECT_TRUE(m_document.isNode(*m_document.node(childIdentifier), *grandchild));

    m_document.addLookup(std::make_shared<NotebookNode>(a->identifier(), p->identifier(), "a2"));
    m_document.loadData({DocumentDiff(m_time, a->identifier(), {{"parent", "root"}}),
                         DocumentDiff(m_time, grandchild->identifier(), {{"text", "g"}}),
                         DocumentDiff(m_time, b->identifier(), {{"parent", a->identifier()}})},
                        {});
    EXPECT_EQ(grandchild->text(), "g");
}

} // namespace
} // namespace quillery
