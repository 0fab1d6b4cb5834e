#include "CliFixture.h"

#include <simdjson.h>

namespace quillery::cli {
namespace {

// A notebook made with the tool itself: "Groceries" (apple pie), "Garden" (apple tree), "Résumé"
// and a deleted "old apple".
class FindCommand : public CliFixture {
protected:
    FindCommand() {
        run({"new", m_package});
        pie = add("apple pie\nwith cream", {"--parent", add("Groceries")});
        tree = add("apple tree", {"--parent", add("Garden")});
        add("Résumé");
        old = add("old apple", {"--parent", "deleted"});
    }

    Outcome find(std::vector<std::string> more) {
        more.insert(more.begin(), {"find", m_package});
        return run(more);
    }

    std::string pie, tree, old;
};

TEST_F(FindCommand, PrintsIdentifierPathAndFirstLineInTreeOrderAndAnswersByExitCode) {
    EXPECT_EQ(find({"APPLE"}).out, pie + "\tGroceries > apple pie\tapple pie\n" + tree +
                                       "\tGarden > apple tree\tapple tree\n");
    EXPECT_EQ(find({"old", "--deleted"}).out, old + "\tDeleted notes > old apple\told apple\n");
    struct Case {
        std::vector<std::string> arguments;
        int exitCode;
        long lines;
    };
    for (const Case& c :
         {Case{{"resume"}, kSuccess, 1}, Case{{"tree", "apple"}, kSuccess, 1},
          Case{{"apple tree"}, kSuccess, 1}, Case{{"apple", "--deleted"}, kSuccess, 3},
          Case{{"plum"}, kNoMatches, 0}}) {
        Outcome outcome = find(c.arguments);
        EXPECT_EQ(outcome.exitCode, c.exitCode) << ::testing::PrintToString(c.arguments);
        EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), c.lines)
            << ::testing::PrintToString(c.arguments);
    }
}

TEST_F(FindCommand, GivesEveryHitAsJson) {
    Outcome json = find({"apple", "--deleted", "--format", "json"});
    simdjson::dom::parser parser;
    simdjson::dom::array hits;
    ASSERT_EQ(parser.parse(json.out).get(hits), simdjson::SUCCESS) << json.out;
    ASSERT_EQ(hits.size(), 3u);
    EXPECT_EQ(std::string_view(hits.at(0)["identifier"]), pie);
    EXPECT_EQ(std::string_view(hits.at(0)["text"]), "apple pie\nwith cream");
    EXPECT_EQ(std::string_view(hits.at(0)["path"].at(0)), "Groceries");
    EXPECT_FALSE(bool(hits.at(0)["deleted"]));
    EXPECT_TRUE(bool(hits.at(2)["deleted"]));
}

} // namespace
} // namespace quillery::cli
