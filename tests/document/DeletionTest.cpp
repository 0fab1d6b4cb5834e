#include "DocumentFixture.h"

namespace quillery {
namespace {

using testing_support::SmallNotebook;

// Steps, each "delete @x" or "putback @x" as the user does them, "undo" or "redo", or a record
// from another installation; and the tree after them.
struct PutBackCase {
    const char* name;
    std::vector<std::string> steps;
    const char* outline;

    friend void PrintTo(const PutBackCase& c, std::ostream* out) { *out << c.name; }
};

class PutBack : public SmallNotebook, public testing::WithParamInterface<PutBackCase> {};

TEST_P(PutBack, ReturnsTheNoteWhereItBelongs) {
    for (const std::string& step : GetParam().steps) {
        auto note = [&] {
            return m_document.node(named(step.substr(step.find('@') + 1)));
        };
        if (step.starts_with("delete ")) {
            m_document.userDidDelete(*note());
        } else if (step.starts_with("putback ")) {
            m_document.userDidPutBack(*note());
            EXPECT_EQ(m_undoManager.undoActionName(), "Put Back Note");
        } else if (step == "undo")
            m_undoManager.undo();
        else if (step == "redo")
            m_undoManager.redo();
        else
            m_document.applyDiff(record(step));
    }
    EXPECT_EQ(outline(), GetParam().outline);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PutBack,
    testing::Values(
        PutBackCase{
            "ParentPresent", {"delete @b", "putback @b"}, "root(P(a() b() c()) Q()) deleted()"},
        PutBackCase{"NextSiblingDeletedTooAndPutBackFirst",
                    {"delete @b", "delete @c", "putback @c", "putback @b"},
                    "root(P(a() b() c()) Q()) deleted()"},
        PutBackCase{"NextSiblingStillDeleted",
                    {"delete @b", "delete @c", "putback @b"},
                    "root(P(a() b()) Q()) deleted(c())"},
        PutBackCase{"ParentItselfDeleted",
                    {"delete @b", "delete @P", "putback @b"},
                    "root(Q() b()) deleted(P(a() c()))"},
        PutBackCase{"ParentGone",
                    {"delete @b", "@P destroy=true", "putback @b"},
                    "root(Q() b()) deleted()"},
        PutBackCase{"DeletedByAnotherInstallation",
                    {"@c parent=@deleted deleted_from=@P deleted_after=@b", "putback @c"},
                    "root(P(a() b() c()) Q()) deleted()"},
        PutBackCase{"DeletedWithoutItsPlace",
                    {"@b parent=@deleted", "putback @b"},
                    "root(P(a() c()) Q() b()) deleted()"},
        PutBackCase{"PutBackThenDeletedWithoutItsPlace",
                    {"delete @b", "putback @b", "@b parent=@deleted", "putback @b"},
                    "root(P(a() c()) Q() b()) deleted()"},
        PutBackCase{"UndoOfPutBack",
                    {"delete @b", "putback @b", "undo"},
                    "root(P(a() c()) Q()) deleted(b())"},
        PutBackCase{"RedoOfDeleteKeepsThePlace",
                    {"delete @b", "undo", "redo", "putback @b"},
                    "root(P(a() b() c()) Q()) deleted()"}),
    [](const auto& caseInfo) { return std::string(caseInfo.param.name); });

} // namespace
} // namespace quillery
