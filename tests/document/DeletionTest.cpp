#include "DocumentFixture.h"

#include <functional>

namespace quillery {
namespace {

using testing_support::DocumentFixture;

// "P" with children a, b, c and an empty "Q" under the root; an undo manager attached.
class Deletion : public DocumentFixture {
protected:
    Deletion() {
        m_document.setUndoManager(&m_undoManager);
        p = addNote(m_document.rootNode(), "P");
        a = addNote(p, "a");
        b = addNote(p, "b");
        c = addNote(p, "c");
        q = addNote(m_document.rootNode(), "Q");
    }
    ~Deletion() override { m_undoManager.removeAllActions(); }

    UndoManager m_undoManager;
    NodePtr p, a, b, c, q;
};

// The fixture's notes, for the steps of a table case.
struct Notes {
    Document& document;
    UndoManager& undoManager;
    NodePtr p, a, b, c;
};

struct PutBackCase {
    const char* name;
    // Deletes notes (and maybe more), then puts notes back.
    std::function<void(const Notes&)> steps;
    const char* outline;

    friend void PrintTo(const PutBackCase& c, std::ostream* out) { *out << c.name; }
};

class PutBack : public Deletion, public testing::WithParamInterface<PutBackCase> {};

// A record as another installation would have written it, replayed without journaling.
void applyForeign(Document& document, const NodePtr& note, PlainDictionary payload) {
    document.applyDiff(DocumentDiff(document.now(), note->identifier(), std::move(payload)));
}

const PutBackCase kPutBackCases[] = {
    {"ParentPresent",
     [](const Notes& n) {
         n.document.userDidDelete(*n.b);
         n.document.userDidPutBack(*n.b);
     },
     "root(P(a() b() c()) Q()) deleted()"},
    {"NextSiblingDeletedTooAndPutBackFirst",
     [](const Notes& n) {
         n.document.userDidDelete(*n.b);
         n.document.userDidDelete(*n.c);
         n.document.userDidPutBack(*n.c);
         n.document.userDidPutBack(*n.b);
     },
     "root(P(a() b() c()) Q()) deleted()"},
    {"NextSiblingStillDeleted",
     [](const Notes& n) {
         n.document.userDidDelete(*n.b);
         n.document.userDidDelete(*n.c);
         n.document.userDidPutBack(*n.b);
     },
     "root(P(a() b()) Q()) deleted(c())"},
    {"ParentItselfDeleted",
     [](const Notes& n) {
         n.document.userDidDelete(*n.b);
         n.document.userDidDelete(*n.p);
         n.document.userDidPutBack(*n.b);
     },
     "root(Q() b()) deleted(P(a() c()))"},
    {"ParentGone",
     [](const Notes& n) {
         n.document.userDidDelete(*n.b);
         applyForeign(n.document, n.p, {{"destroy", true}});
         n.document.userDidPutBack(*n.b);
     },
     "root(Q() b()) deleted()"},
    {"DeletedByAnotherInstallation",
     [](const Notes& n) {
         applyForeign(n.document, n.c,
                      {{"parent", "deleted"},
                       {"deleted_from", n.p->identifier()},
                       {"deleted_after", n.b->identifier()}});
         n.document.userDidPutBack(*n.c);
     },
     "root(P(a() b() c()) Q()) deleted()"},
    {"DeletedWithoutItsPlace",
     [](const Notes& n) {
         applyForeign(n.document, n.b, {{"parent", "deleted"}});
         n.document.userDidPutBack(*n.b);
     },
     "root(P(a() c()) Q() b()) deleted()"},
    {"PutBackThenDeletedWithoutItsPlace",
     [](const Notes& n) {
         n.document.userDidDelete(*n.b);
         n.document.userDidPutBack(*n.b);
         applyForeign(n.document, n.b, {{"parent", "deleted"}});
         n.document.userDidPutBack(*n.b);
     },
     "root(P(a() c()) Q() b()) deleted()"},
    {"UndoOfPutBack",
     [](const Notes& n) {
         n.document.userDidDelete(*n.b);
         n.document.userDidPutBack(*n.b);
         n.undoManager.undo();
     },
     "root(P(a() c()) Q()) deleted(b())"},
    {"RedoOfDeleteKeepsThePlace",
     [](const Notes& n) {
         n.document.userDidDelete(*n.b);
         n.undoManager.undo();
         n.undoManager.redo();
         n.document.userDidPutBack(*n.b);
     },
     "root(P(a() b() c()) Q()) deleted()"},
};

TEST_P(PutBack, ReturnsTheNoteWhereItBelongs) {
    GetParam().steps({m_document, m_undoManager, p, a, b, c});
    EXPECT_EQ(outline(), GetParam().outline);
}

INSTANTIATE_TEST_SUITE_P(Cases, PutBack, testing::ValuesIn(kPutBackCases),
                         [](const auto& caseInfo) { return std::string(caseInfo.param.name); });

TEST_F(Deletion, TheDeletionRecordNamesThePlaceAndTheStepsAreNamed) {
    m_document.userDidDelete(*b);
    ASSERT_EQ(m_document.diffs().size(), 1u);
    EXPECT_EQ(m_document.diffs()[0].payload,
              (PlainDictionary{{"parent", "deleted"},
                               {"deleted_from", p->identifier()},
                               {"deleted_after", a->identifier()},
                               {"deleted_before", c->identifier()}}));
    EXPECT_EQ(m_undoManager.undoActionName(), "Delete Note");
    m_document.userDidPutBack(*b);
    EXPECT_EQ(m_undoManager.undoActionName(), "Put Back Note");
    EXPECT_TRUE(m_lines.empty());
}

} // namespace
} // namespace quillery
