#include "cli/Cli.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <simdjson.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace quillery::cli {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

struct Outcome {
    int exitCode;
    std::string out;
    std::string err;
};

// Each test runs the tool as a fresh installation: its own config folder, so its own client
// identifier, shared by all runs of the test.
class CliTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "quillery-cli-XXXXXX").string();
        ASSERT_TRUE(::mkdtemp(pattern.data()));
        m_directory = pattern;
        ::setenv("XDG_CONFIG_HOME", (m_directory / "config").c_str(), 1);
        m_package = (m_directory / "Notes.quillery").string();
    }
    void TearDown() override { std::filesystem::remove_all(m_directory); }

    Outcome run(std::vector<std::string> arguments) {
        std::istringstream in;
        std::ostringstream out, err;
        int exitCode = runCli(arguments, in, out, err);
        return {exitCode, out.str(), err.str()};
    }
    std::string add(const std::string& text, std::vector<std::string> more = {}) {
        std::vector<std::string> arguments{"add", m_package, "--text", text};
        arguments.insert(arguments.end(), more.begin(), more.end());
        Outcome result = run(arguments);
        EXPECT_EQ(result.exitCode, kSuccess) << result.err;
        EXPECT_EQ(result.out.size(), 37u) << "one identifier and a line feed";
        return result.out.substr(0, 36);
    }
    std::string markdown() { return run({"export", "--format", "markdown", m_package}).out; }

    std::filesystem::path m_directory;
    std::string m_package;
};

TEST_F(CliTest, NewAddAndExportMakeAWorkingNotebook) {
    ASSERT_EQ(run({"new", m_package}).exitCode, kSuccess);
    std::string parent = add("Groceries");
    add("milk", {"--parent", parent});
    add("bread", {"--parent", parent, "--at", "0"});
    add("Top", {"--at", "0"});

    EXPECT_EQ(markdown(), "- Top\n- Groceries\n  - bread\n  - milk\n");
    // One installation, one journal.
    int journals = 0;
    for (const auto& entry : std::filesystem::directory_iterator(m_package))
        journals += entry.path().extension() == ".journal";
    EXPECT_EQ(journals, 1);
}

TEST_F(CliTest, ExportJsonIsOneObjectWithBothRoots) {
    run({"new", m_package});
    std::string identifier = add("line one\nline \"two\"");
    Outcome result = run({"export", m_package});
    ASSERT_EQ(result.exitCode, kSuccess);

    simdjson::dom::parser parser;
    simdjson::dom::element tree;
    ASSERT_EQ(parser.parse(result.out).get(tree), simdjson::SUCCESS) << result.out;
    EXPECT_EQ(std::string_view(tree["root"]["identifier"]), "root");
    EXPECT_EQ(std::string_view(tree["deleted"]["identifier"]), "deleted");
    simdjson::dom::element note = tree["root"]["children"].at(0);
    EXPECT_EQ(std::string_view(note["identifier"]), identifier);
    EXPECT_EQ(std::string_view(note["text"]), "line one\nline \"two\"");
    EXPECT_EQ(simdjson::dom::array(note["children"]).size(), 0u);
    EXPECT_TRUE(note["image"].error());
}

TEST_F(CliTest, MarkdownLinksPicturesAndIndentsFurtherLines) {
    std::filesystem::create_directories(std::filesystem::path(m_package) / "images");
    std::ofstream(std::filesystem::path(m_package) / "images" / "K1.png") << "\x89PNG\r\n\x1A\n";
    std::ofstream(std::filesystem::path(m_package) / "C.journal") << R"({"diffs": [
        {"timestamp": "2017-03-04T09:15:02GMT", "identifier": "P", "text": "", "parent": "root",
         "image": "K1"},
        {"timestamp": "2017-03-04T09:15:03GMT", "identifier": "T", "text": "a\nb", "parent": "P"}
    ]})";

    EXPECT_EQ(markdown(), "- [picture K1](<" + m_package + "/images/K1.png>)\n  - a\n    b\n");
    Outcome info = run({"info", m_package});
    EXPECT_THAT(info.out, HasSubstr("Journals: 1\n  C: 2 records\n"));
    EXPECT_THAT(info.out, HasSubstr("Notes: 2\nDeleted notes: 0\nPictures: 1\nOpened in: "));
}

TEST_F(CliTest, DiagnosticsGoToStandardErrorOnly) {
    run({"new", m_package});
    Outcome result = run({"add", m_package, "--text", "x"});
    EXPECT_THAT(result.out, ::testing::MatchesRegex("[0-9A-F-]{36}\n"));
    EXPECT_THAT(result.err, HasSubstr("fileURL = " + m_package));
}

TEST_F(CliTest, PackageFailuresExitWithOneAndExplain) {
    Outcome missing = run({"export", m_package});
    EXPECT_EQ(missing.exitCode, kPackageFailure);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "quillery-cli: The notebook “Notes.quillery” doesn't exist.\n"
                           "  (NSCocoaErrorDomain 260)\n");

    std::filesystem::create_directory(m_package);
    std::ofstream(std::filesystem::path(m_package) / "X.journal") << R"({"diffs": [1]})";
    Outcome malformed = run({"info", m_package});
    EXPECT_EQ(malformed.exitCode, kPackageFailure);
    EXPECT_THAT(malformed.err, HasSubstr("“X.journal”"));
    EXPECT_THAT(malformed.err, HasSubstr("(NSOSStatusErrorDomain -4)"));
    EXPECT_EQ(run({"add", m_package, "--text", "t"}).exitCode, kPackageFailure);
    EXPECT_EQ(run({"new", m_package}).exitCode, kPackageFailure);
}

struct BadUsage {
    const char* name;
    std::vector<std::string> arguments;
    const char* messagePart;

    friend void PrintTo(const BadUsage& c, std::ostream* out) { *out << c.name; }
};

class CliUsageTest : public CliTest, public ::testing::WithParamInterface<BadUsage> {};

TEST_P(CliUsageTest, ExitsWithTwoAndSaysWhy) {
    run({"new", m_package});
    std::vector<std::string> arguments;
    for (const std::string& argument : GetParam().arguments)
        arguments.push_back(argument == "PKG" ? m_package : argument);
    Outcome result = run(arguments);
    EXPECT_EQ(result.exitCode, kUsageError);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr(GetParam().messagePart));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, CliUsageTest,
    ::testing::Values(
        BadUsage{"NoCommand", {}, "Usage: quillery-cli COMMAND"},
        BadUsage{"UnknownCommand", {"frobnicate"}, "unknown command"},
        BadUsage{"NoPackage", {"export"}, "no PACKAGE given"},
        BadUsage{"TwoPackages", {"info", "PKG", "PKG"}, "more than one PACKAGE"},
        BadUsage{"UnknownOption", {"info", "--verbose", "PKG"}, "unknown option --verbose"},
        BadUsage{"UnknownFormat", {"export", "--format", "yaml", "PKG"}, "unknown format"},
        BadUsage{"NoText", {"add", "PKG"}, "no --text given"},
        BadUsage{"OptionWithoutValue", {"add", "PKG", "--text"}, "needs a value"},
        BadUsage{"TextNotUtf8", {"add", "PKG", "--text", "\xFF"}, "not valid UTF-8"},
        BadUsage{"BadIndex", {"add", "PKG", "--text", "t", "--at", "-1"}, "--at needs"},
        BadUsage{"IndexPastEnd", {"add", "PKG", "--text", "t", "--at", "1"}, "past the end"},
        BadUsage{"UnknownParent", {"add", "PKG", "--text", "t", "--parent", "X"}, "no note “X”"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(CliTest, EveryCommandExplainsItself) {
    for (const char* command : {"new", "export", "add", "info"}) {
        Outcome result = run({command, "--help"});
        EXPECT_EQ(result.exitCode, kSuccess);
        EXPECT_THAT(result.out, StartsWith(std::string("Usage: quillery-cli ") + command));
    }
    Outcome overview = run({"--help"});
    EXPECT_EQ(overview.exitCode, kSuccess);
    EXPECT_THAT(overview.out, HasSubstr("Exit status"));
}

TEST_F(CliTest, AddsRunAtOnceByOneInstallationAllLand) {
    ASSERT_EQ(run({"new", m_package}).exitCode, kSuccess);
    constexpr int kProcesses = 4;
    constexpr int kRounds = 10;
    std::vector<pid_t> children;
    for (int p = 0; p < kProcesses; ++p) {
        const pid_t child = ::fork();
        if (child == 0) {
            int failures = 0;
            for (int round = 0; round < kRounds; ++round) {
                std::istringstream in;
                std::ostringstream out, err;
                const std::string text = "p" + std::to_string(p) + "r" + std::to_string(round);
                failures += runCli({"add", m_package, "--text", text}, in, out, err) != kSuccess;
            }
            ::_exit(failures);
        }
        children.push_back(child);
    }
    for (pid_t child : children) {
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    const std::string notes = markdown();
    for (int p = 0; p < kProcesses; ++p)
        for (int round = 0; round < kRounds; ++round)
            EXPECT_THAT(notes,
                        HasSubstr("- p" + std::to_string(p) + "r" + std::to_string(round) + "\n"));
}

TEST_F(CliTest, AFolderThatIsNoNotebookIsRefusedAndLeftAlone) {
    const std::filesystem::path folder = m_directory / "Photos";
    std::filesystem::create_directory(folder);
    Outcome result = run({"add", folder.string(), "--text", "x"});
    EXPECT_EQ(result.exitCode, kPackageFailure);
    EXPECT_THAT(result.err, HasSubstr("“" + folder.string() + "” is not a Quillery notebook"));
    EXPECT_TRUE(std::filesystem::is_empty(folder));
}

} // namespace
} // namespace quillery::cli
