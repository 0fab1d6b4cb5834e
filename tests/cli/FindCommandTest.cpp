#include "cli/Cli.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <simdjson.h>
#include <sstream>

namespace quillery::cli {
namespace {

struct Outcome {
    int exitCode;
    std::string out;
};

// A notebook made with the tool itself: "Groceries" (apple pie), "Garden" (apple tree), "Résumé"
// and a deleted "old apple".
class FindCommand : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "quillery-find-XXXXXX").string();
        ASSERT_TRUE(::mkdtemp(pattern.data()));
        m_directory = pattern;
        ::setenv("XDG_CONFIG_HOME", (m_directory / "config").c_str(), 1);
        m_package = (m_directory / "Notes.quillery").string();
        run({"new", m_package});
        groceries = add("Groceries");
        pie = add("apple pie\nwith cream", groceries);
        garden = add("Garden");
        tree = add("apple tree", garden);
        resume = add("Résumé");
        old = add("old apple", "deleted");
    }
    void TearDown() override { std::filesystem::remove_all(m_directory); }

    Outcome run(std::vector<std::string> arguments) {
        std::istringstream in;
        std::ostringstream out, err;
        int exitCode = runCli(arguments, in, out, err);
        return {exitCode, out.str()};
    }
    std::string add(const std::string& text, const std::string& parent = {}) {
        std::vector<std::string> arguments{"add", m_package, "--text", text};
        if (!parent.empty())
            arguments.insert(arguments.end(), {"--parent", parent});
        return run(arguments).out.substr(0, 36);
    }
    Outcome find(std::vector<std::string> more) {
        more.insert(more.begin(), {"find", m_package});
        return run(more);
    }

    std::filesystem::path m_directory;
    std::string m_package;
    std::string groceries, pie, garden, tree, resume, old;
};

TEST_F(FindCommand, PrintsIdentifierPathAndFirstLineInTreeOrder) {
    EXPECT_EQ(find({"APPLE"}).out, pie + "\tGroceries > apple pie\tapple pie\n" + tree +
                                       "\tGarden > apple tree\tapple tree\n");
}

TEST_F(FindCommand, AnswersByExitCode) {
    struct Case {
        std::vector<std::string> arguments;
        int exitCode;
        std::size_t lines;
    };
    const std::vector<Case> cases{
        {{"resume"}, kSuccess, 1},
        {{"tree", "apple"}, kSuccess, 1},
        {{"apple tree"}, kSuccess, 1},
        {{"apple", "--deleted"}, kSuccess, 3},
        {{"plum"}, kNoMatches, 0},
        {{}, kUsageError, 0},
        {{" "}, kUsageError, 0},
        {{"apple", "--format", "xml"}, kUsageError, 0},
        {{"apple", "--fuzzy"}, kUsageError, 0},
    };
    for (const Case& c : cases) {
        Outcome outcome = find(c.arguments);
        EXPECT_EQ(outcome.exitCode, c.exitCode) << ::testing::PrintToString(c.arguments);
        EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'),
                  static_cast<long>(c.lines))
            << ::testing::PrintToString(c.arguments);
    }
    EXPECT_EQ(run({"find", (m_directory / "Missing.quillery").string(), "x"}).exitCode,
              kPackageFailure);
}

TEST_F(FindCommand, MarksDeletedNotesInThePathAndInJson) {
    Outcome text = find({"old", "--deleted"});
    EXPECT_EQ(text.out, old + "\tDeleted notes > old apple\told apple\n");

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
