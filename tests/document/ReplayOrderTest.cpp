#include "DocumentFixture.h"
#include "JournalGenerator.h"
#include "model/JournalMerge.h"

#include <algorithm>
#include <array>
#include <map>
#include <random>

namespace quillery {
namespace {

using testing_support::DocumentFixture;

// Records named by letters: "+x>p" creates x under p ("-" for the root), "~x>p" moves x under p,
// "=x" changes x's text to "x'".
struct OrderCase {
    const char* name;
    std::vector<const char*> records;
    const char* outline;
    std::size_t missingParentLines;
};

class ReplayOrder : public DocumentFixture, public testing::WithParamInterface<OrderCase> {
protected:
    Identifier note(char letter) {
        if (letter == '-')
            return Identifier("root");
        auto [it, added] = m_notes.try_emplace(letter, Identifier::makeRandom());
        return it->second;
    }

    DocumentDiff record(std::string_view text) {
        const Identifier target = note(text[1]);
        if (text[0] == '=')
            return DocumentDiff(m_time, target, {{"text", std::string{text[1], '\''}}});
        PlainDictionary payload{{"parent", note(text[3])}};
        if (text[0] == '+')
            payload.set("text", std::string(1, text[1]));
        return DocumentDiff(m_time, target, payload);
    }

    std::map<char, Identifier> m_notes;
};

TEST_P(ReplayOrder, RecordsWaitForTheNotesTheyNeed) {
    std::vector<DocumentDiff> merged;
    for (const char* text : GetParam().records)
        merged.push_back(record(text));
    m_document.loadData(merged, {});
    EXPECT_EQ(outline(), GetParam().outline);
    EXPECT_EQ(std::count(m_lines.begin(), m_lines.end(), std::string(kCouldNotFindParentLine)),
              static_cast<long>(GetParam().missingParentLines));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ReplayOrder,
    testing::Values(
        OrderCase{"MoveBeforeItsParent", {"+x>-", "~x>a", "+a>-"}, "root(a(x())) deleted()", 0},
        OrderCase{"EditBeforeCreation", {"=x", "+x>-"}, "root(x'()) deleted()", 0},
        OrderCase{"EditOfAWaitingNote", {"+b>a", "=b", "+a>-"}, "root(a(b'())) deleted()", 0},
        OrderCase{"LaterMoveWaitsBehind",
                  {"+x>-", "+y>-", "~x>a", "~x>y", "+a>-"},
                  "root(y(x()) a()) deleted()",
                  0},
        OrderCase{
            "OrphanLandsAtTheEndOfTheTopLevel", {"+b>a", "+c>-"}, "root(c() b()) deleted()", 1},
        OrderCase{"OrphanBringsItsChildren", {"+c>b", "+b>a"}, "root(b(c())) deleted()", 1},
        OrderCase{"MoveToANoteNeverCreatedStays", {"+x>-", "~x>a"}, "root(x()) deleted()", 1},
        OrderCase{"OrphansNamingEachOther", {"+x>y", "+y>x"}, "root(x(y())) deleted()", 1},
        OrderCase{"NotesMovedIntoEachOtherOnTwoMachinesKeepTheirBranch",
                  {"+a>-", "+b>-", "~a>b", "~b>a"},
                  "root(b(a())) deleted()",
                  0},
        OrderCase{"MoveIntoItsOwnSubtreeIsRefused",
                  {"+a>-", "+b>a", "~a>b"},
                  "root(a(b())) deleted()",
                  0},
        OrderCase{"EditOfANoteNeverCreatedIsDropped", {"=x", "+a>-"}, "root(a()) deleted()", 0}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

// Sessions of several clients whose records reach the merge with stamps of one second or skewed
// clocks: whatever the order, no note is lost and every reader builds the same tree.
class SkewedSessions : public DocumentFixture, public testing::WithParamInterface<unsigned> {
protected:
    static constexpr std::size_t kClients = 3;

    // One journal per client, their records made in turns on one tree, each stamped by its
    // client's clock.
    std::vector<std::vector<DocumentDiff>>
    session(unsigned seed, const std::array<std::chrono::seconds, kClients>& skew) {
        auto journals = testing_support::JournalGenerator(seed, {50, 50, 0, 0})
                            .generate(300, kClients, m_time, 8, 1);
        m_created.clear();
        for (std::size_t client = 0; client < kClients; ++client)
            for (DocumentDiff& diff : journals[client]) {
                diff.timestamp += skew[client];
                if (diff.payload.contains("text") && diff.payload.contains("parent"))
                    m_created.push_back(diff.identifier);
            }
        return journals;
    }

    // The tree a reader builds from journals visited in the given order.
    std::string read(std::vector<std::vector<DocumentDiff>> journals) {
        InMemoryPreferences preferences;
        Document reader(preferences);
        reader.loadData(MergedDiffsFromArrayOfDiffs(std::move(journals)), {});
        for (const Identifier& created : m_created) {
            NodePtr node = reader.node(created);
            EXPECT_TRUE(node && reader.isNode(*reader.rootNode(), *node)) << "a note was lost";
        }
        EXPECT_EQ(reader.nodeCount(), m_created.size() + 2);
        return describe(*reader.rootNode());
    }

    std::vector<Identifier> m_created;
};

TEST_P(SkewedSessions, LoseNoNoteAndReadAlike) {
    using std::chrono::hours;
    using std::chrono::seconds;
    std::mt19937 random(GetParam());
    const std::array<std::array<seconds, kClients>, 4> skews{{{seconds(0), seconds(0), seconds(0)},
                                                              {seconds(0), hours(1), seconds(0)},
                                                              {seconds(0), -hours(1), seconds(2)},
                                                              {-seconds(1), hours(1), -hours(1)}}};
    for (const auto& skew : skews) {
        auto journals = session(static_cast<unsigned>(random()), skew);
        EXPECT_EQ(read(journals), read(journals));
        std::reverse(journals.begin(), journals.end());
        read(journals);
        // Stamps shuffled within each journal: records then even come before their own
        // client's earlier ones.
        for (auto& journal : journals) {
            std::vector<TimePoint> stamps;
            for (const DocumentDiff& diff : journal)
                stamps.push_back(diff.timestamp);
            std::shuffle(stamps.begin(), stamps.end(), random);
            for (std::size_t i = 0; i < journal.size(); ++i)
                journal[i].timestamp = stamps[i];
        }
        read(journals);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, SkewedSessions, testing::Range(1u, 9u));

} // namespace
} // namespace quillery
