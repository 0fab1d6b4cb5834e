#include "DocumentFixture.h"

namespace quillery {
namespace {

using testing_support::Lines;
using testing_support::SmallNotebook;

const std::string kNoParent(kCouldNotFindParentLine);
const std::string kIntoItself = "Refusing to move a note into itself.";

// Records applied in turn (written as SmallNotebook::record reads them), and what the tree, the
// announcements and the diagnostic lines are then. Sound records are replayed by the random
// sessions too; these are the announcements and the odd records. Announcements read "changed",
// "inserted(-,3)", "destroyed(1,-)", "moved(0,2)" or "reparented(P 1>Q 2)": old and new child
// indexes and parents.
struct ApplyCase {
    const char* name;
    std::vector<const char*> records;
    const char* outline;
    const char* updates;
    Lines lines;

    friend void PrintTo(const ApplyCase& c, std::ostream* out) { *out << c.name; }
};

class DiffApplication : public SmallNotebook, public testing::WithParamInterface<ApplyCase> {
protected:
    std::string nameOf(const std::optional<Identifier>& identifier) {
        NodePtr node = identifier ? m_document.node(*identifier) : nullptr;
        return !node                         ? "?"
               : node->identifier().isUuid() ? node->text()
                                             : node->identifier().toString();
    }

    std::string describe(const DocumentUpdate& update) {
        static const char* const kTypes[] = {"changed", "inserted",   "destroyed",
                                             "moved",   "reparented", "reloaded"};
        auto index = [](const std::optional<std::size_t>& value) {
            return value ? std::to_string(*value) : std::string("-");
        };
        std::string out = kTypes[static_cast<int>(update.type)];
        if (update.type == NodeUpdateType::changedParent)
            out += "(" + nameOf(update.oldParentIdentifier) + " " + index(update.oldChildIndex) +
                   ">" + nameOf(update.newParentIdentifier) + " " + index(update.newChildIndex) +
                   ")";
        else if (update.oldChildIndex || update.newChildIndex)
            out += "(" + index(update.oldChildIndex) + "," + index(update.newChildIndex) + ")";
        return out;
    }
};

TEST_P(DiffApplication, ChangesTheTreeAnnouncesAndReports) {
    for (const char* text : GetParam().records)
        m_document.applyDiff(record(text), true);
    EXPECT_EQ(outline(), GetParam().outline);
    std::string updates;
    for (const DocumentUpdate& update : m_updates)
        updates += (updates.empty() ? "" : " ") + describe(update);
    EXPECT_EQ(updates, GetParam().updates);
    Lines expectedLines;
    for (const std::string& line : GetParam().lines)
        expectedLines.push_back(resolved(line));
    EXPECT_EQ(m_lines, expectedLines);
}

const std::string kMissingSibling =
    "Uh-oh: did move before but siblingIdentifier is not found here ";
const char* const kUnchanged = "root(P(a() b() c()) Q()) deleted()";

INSTANTIATE_TEST_SUITE_P(
    Cases, DiffApplication,
    testing::Values(
        // Creations.
        ApplyCase{"CreationAppends",
                  {"@d identifier=@d text=d parent=@P"},
                  "root(P(a() b() c() d()) Q()) deleted()",
                  "inserted(-,3)",
                  {}},
        ApplyCase{"CreationBeforeASibling",
                  {"@d text=d parent=@P before=@b"},
                  "root(P(a() d() b() c()) Q()) deleted()",
                  "inserted(-,1)",
                  {}},
        ApplyCase{"CreationBeforeAnUnknownSiblingAppends",
                  {"@d text=d parent=@P before=x"},
                  "root(P(a() b() c() d()) Q()) deleted()",
                  "inserted(-,3)",
                  {}},
        ApplyCase{"CreationUnderAnUnknownParent",
                  {"@d text=d parent=@nowhere"},
                  kUnchanged,
                  "",
                  {kNoParent}},
        ApplyCase{"CreationWithoutTextOrParent", {"@d parent=@P", "@e text=e"}, kUnchanged, "", {}},
        ApplyCase{"CreationOfAnIndexedNoteIsAChange",
                  {"@a identifier=@a text=a2 parent=@P image=K url=u"},
                  "root(P(b() c() a2()) Q()) deleted()",
                  "reparented(P 0>P 2)",
                  {"Unrecognized diff", "Unrecognized diff"}},
        // Destroys.
        ApplyCase{"DestroyOfFalse", {"@b destroy=false"}, kUnchanged, "", {}},
        ApplyCase{"Destroy",
                  {"@b destroy=true"},
                  "root(P(a() c()) Q()) deleted()",
                  "destroyed(1,-)",
                  {"Removing node..."}},
        ApplyCase{"RootsStay",
                  {"@root destroy=true", "@deleted parent=@P"},
                  kUnchanged,
                  "changed",
                  {"Removing node..."}},
        // Changes in place.
        ApplyCase{"ChangeWithNothingToDo",
                  {"@a identifier=@a timestamp=whenever"},
                  kUnchanged,
                  "changed",
                  {}},
        ApplyCase{"BadTextAndUnknownKeysAreReported",
                  {"@a text=#3 color=red destroy=yes after=@b"},
                  "root(P(b() a() c()) Q()) deleted()",
                  "moved(0,1)",
                  {"Bad text.", "Unrecognized diff", "Unrecognized diff"}},
        ApplyCase{"AfterItsPredecessor", {"@b after=@a"}, kUnchanged, "moved(1,1)", {}},
        ApplyCase{"AfterItself",
                  {"@a after=@a"},
                  "root(P(b() c() a()) Q()) deleted()",
                  "moved(0,2)",
                  {"Uh-oh: did move after but siblingIdentifier is not found here @a"}},
        ApplyCase{"BeforeAMissingSibling",
                  {"@b before=@x"},
                  "root(P(a() c() b()) Q()) deleted()",
                  "moved(1,2)",
                  {kMissingSibling + "@x"}},
        ApplyCase{"ReorderOfANoteOutsideItsParent",
                  {"@g text=g parent=@b", "@b destroy=true", "@g before=x"},
                  "root(P(a() c()) Q()) deleted()",
                  "inserted(-,0) destroyed(1,-) changed",
                  {"Removing node..."}},
        // Moves to another parent.
        ApplyCase{"ReparentAppends",
                  {"@x text=x parent=@Q", "@b parent=@Q"},
                  "root(P(a() c()) Q(x() b())) deleted()",
                  "inserted(-,0) reparented(P 1>Q 1)",
                  {}},
        ApplyCase{"ReparentBeforeASiblingIsNoReorder",
                  {"@x text=x parent=@Q", "@c before=@x parent=@Q"},
                  "root(P(a() b()) Q(c() x())) deleted()",
                  "inserted(-,0) reparented(P 2>Q 0)",
                  {}},
        ApplyCase{"ReparentToAnUnknownParentAppliesTheRest",
                  {"@b parent=nowhere text=B"},
                  "root(P(a() B() c()) Q()) deleted()",
                  "changed",
                  {kNoParent}},
        ApplyCase{"ReparentIntoItselfOrItsSubtree",
                  {"@x text=x parent=@a", "@a parent=@a", "@a parent=@x"},
                  "root(P(a(x()) b() c()) Q()) deleted()",
                  "inserted(-,0) changed changed",
                  {kIntoItself, kIntoItself}},
        // A note whose parent was destroyed and made again walks up the new parent.
        ApplyCase{
            "ParentMadeAgainElsewhere",
            {"@x text=x parent=@a", "@a destroy=true", "@a text=again parent=@Q", "@Q parent=@x"},
            "root(P(b() c()) Q(again())) deleted()",
            "inserted(-,0) destroyed(0,-) inserted(-,0) changed",
            {"Removing node...", kIntoItself}},
        ApplyCase{"NotMovedUnderNotesItsEarlierSelfLeft",
                  {"@x text=x parent=@a", "@a destroy=true", "@a text=again parent=@root",
                   "@a parent=@x"},
                  "root(P(b() c()) Q() again()) deleted()",
                  "inserted(-,0) destroyed(0,-) inserted(-,2) changed",
                  {"Removing node...", kIntoItself}},
        // Destroying b leaves its child x indexed; b made again under x closes a loop no root
        // reaches, which ends every walk up the tree.
        ApplyCase{"ParentCycle",
                  {"@x text=x parent=@b", "@b destroy=true", "@b text=b parent=@x", "@a parent=@x",
                   "@x parent=@a"},
                  "root(P(c()) Q()) deleted()",
                  "inserted(-,0) destroyed(1,-) inserted(-,0) reparented(P 0>x 1) changed",
                  {"Removing node...", kIntoItself}}),
    [](const auto& caseInfo) { return std::string(caseInfo.param.name); });

TEST_F(SmallNotebook, DestroyLeavesTheDescendantsIndexedAndHoldsPicturesAside) {
    const Identifier key = m_document.addImage(nullptr, {1, 2, 3}, "png");
    m_document.applyDiff(record("@g text= parent=@b image=" + key.toString()));
    m_document.applyDiff(record("@b destroy=true"));
    EXPECT_FALSE(m_document.node(b->identifier()));
    EXPECT_TRUE(m_document.node(named("g")));
    m_document.applyDiff(record("@g destroy=true"));
    EXPECT_FALSE(m_document.images().newImageData().contains(key));
    m_document.applyDiff(record("@g text= parent=@P image=" + key.toString()));
    EXPECT_EQ(m_document.images().newImageData().at(key).data,
              (std::vector<std::uint8_t>{1, 2, 3}));
}

TEST_F(SmallNotebook, EitherRootIsAnAncestorOfEverythingAndNothingIsItsOwn) {
    NodePtr child = addNote(a, "child");
    m_document.applyDiff(record("@Q parent=@deleted"));
    const NodePtr& root = m_document.rootNode();
    const NodePtr& deleted = m_document.deletedRootNode();
    const std::vector<std::tuple<NodePtr, NodePtr, bool>> cases{
        {root, Q, true},  {root, deleted, true}, {deleted, child, true}, {P, child, true},
        {a, child, true}, {a, a, false},         {child, a, false},      {b, child, false},
        {a, root, false}, {a, deleted, false}};
    for (const auto& [ancestor, node, expected] : cases)
        EXPECT_EQ(m_document.isNode(*ancestor, *node), expected)
            << describe(*ancestor) << " of " << describe(*node);
}

} // namespace
} // namespace quillery
