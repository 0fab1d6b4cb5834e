#include "DocumentFixture.h"

#include <functional>

namespace quillery {
namespace {

using testing_support::SmallNotebook;

// A record as another installation would have written it, replayed without journaling.
void applyForeign(SmallNotebook& n, const NodePtr& note, PlainDictionary payload) {
    n.m_document.applyDiff(DocumentDiff(n.m_time, note->identifier(), n.resolved(payload)));
}

struct PutBackCase {
    const char* name;
    // Deletes notes (and maybe more), then puts notes back.
    std::function<void(SmallNotebook&)> steps;
    const char* outline;

    friend void PrintTo(const PutBackCase& c, std::ostream* out) { *out << c.name; }
};

class PutBack : public SmallNotebook, public testing::WithParamInterface<PutBackCase> {};

TEST_P(PutBack, ReturnsTheNoteWhereItBelongs) {
    GetParam().steps(*this);
    EXPECT_EQ(outline(), GetParam().outline);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PutBack,
    testing::Values(PutBackCase{"ParentPresent",
                                [](SmallNotebook& n) {
                                    n.m_document.userDidDelete(*n.b);
                                    n.m_document.userDidPutBack(*n.b);
                                    EXPECT_EQ(n.m_undoManager.undoActionName(), "Put Back Note");
                                },
                                "root(P(a() b() c()) Q()) deleted()"},
                    PutBackCase{"NextSiblingDeletedTooAndPutBackFirst",
                                [](SmallNotebook& n) {
                                    n.m_document.userDidDelete(*n.b);
                                    n.m_document.userDidDelete(*n.c);
                                    n.m_document.userDidPutBack(*n.c);
                                    n.m_document.userDidPutBack(*n.b);
                                },
                                "root(P(a() b() c()) Q()) deleted()"},
                    PutBackCase{"NextSiblingStillDeleted",
                                [](SmallNotebook& n) {
                                    n.m_document.userDidDelete(*n.b);
                                    n.m_document.userDidDelete(*n.c);
                                    n.m_document.userDidPutBack(*n.b);
                                },
                                "root(P(a() b()) Q()) deleted(c())"},
                    PutBackCase{"ParentItselfDeleted",
                                [](SmallNotebook& n) {
                                    n.m_document.userDidDelete(*n.b);
                                    n.m_document.userDidDelete(*n.P);
                                    n.m_document.userDidPutBack(*n.b);
                                },
                                "root(Q() b()) deleted(P(a() c()))"},
                    PutBackCase{"ParentGone",
                                [](SmallNotebook& n) {
                                    n.m_document.userDidDelete(*n.b);
                                    applyForeign(n, n.P, {{"destroy", true}});
                                    n.m_document.userDidPutBack(*n.b);
                                },
                                "root(Q() b()) deleted()"},
                    PutBackCase{"DeletedByAnotherInstallation",
                                [](SmallNotebook& n) {
                                    applyForeign(n, n.c,
                                                 {{"parent", "deleted"},
                                                  {"deleted_from", "@P"},
                                                  {"deleted_after", "@b"}});
                                    n.m_document.userDidPutBack(*n.c);
                                },
                                "root(P(a() b() c()) Q()) deleted()"},
                    PutBackCase{"DeletedWithoutItsPlace",
                                [](SmallNotebook& n) {
                                    applyForeign(n, n.b, {{"parent", "deleted"}});
                                    n.m_document.userDidPutBack(*n.b);
                                },
                                "root(P(a() c()) Q() b()) deleted()"},
                    PutBackCase{"PutBackThenDeletedWithoutItsPlace",
                                [](SmallNotebook& n) {
                                    n.m_document.userDidDelete(*n.b);
                                    n.m_document.userDidPutBack(*n.b);
                                    applyForeign(n, n.b, {{"parent", "deleted"}});
                                    n.m_document.userDidPutBack(*n.b);
                                },
                                "root(P(a() c()) Q() b()) deleted()"},
                    PutBackCase{"UndoOfPutBack",
                                [](SmallNotebook& n) {
                                    n.m_document.userDidDelete(*n.b);
                                    n.m_document.userDidPutBack(*n.b);
                                    n.m_undoManager.undo();
                                },
                                "root(P(a() c()) Q()) deleted(b())"},
                    PutBackCase{"RedoOfDeleteKeepsThePlace",
                                [](SmallNotebook& n) {
                                    n.m_document.userDidDelete(*n.b);
                                    n.m_undoManager.undo();
                                    n.m_undoManager.redo();
                                    n.m_document.userDidPutBack(*n.b);
                                },
                                "root(P(a() b() c()) Q()) deleted()"}),
    [](const auto& caseInfo) { return std::string(caseInfo.param.name); });

} // namespace
} // namespace quillery
