#include "CliFixture.h"
#include "SmallStack.h"

#include <fstream>
#include <gmock/gmock.h>
#include <simdjson.h>

namespace quillery::cli {
namespace {

using ::testing::HasSubstr;

class CliTest : public CliFixture {
protected:
    std::string markdown() { return run({"export", "--format", "markdown", m_package}).out; }
};

TEST_F(CliTest, NewAddAndExportMakeAWorkingNotebookWithOneJournal) {
    ASSERT_EQ(run({"new", m_package}).exitCode, kSuccess);
    std::string parent = add("Groceries");
    add("milk", {"--parent", parent});
    add("bread", {"--parent", parent, "--at", "0"});
    add("Top", {"--at", "0"});

    EXPECT_EQ(markdown(), "- Top\n- Groceries\n  - bread\n  - milk\n");
    simdjson::dom::parser parser;
    simdjson::dom::element tree;
    ASSERT_EQ(parser.parse(run({"export", m_package}).out).get(tree), simdjson::SUCCESS);
    EXPECT_EQ(std::string_view(tree["root"]["children"].at(1)["children"].at(0)["text"]), "bread");
    EXPECT_EQ(std::string_view(tree["deleted"]["identifier"]), "deleted");
    int journals = 0;
    for (const auto& entry : std::filesystem::directory_iterator(m_package))
        journals += entry.path().extension() == ".journal";
    EXPECT_EQ(journals, 1);
    // The engine's lines go to standard error, leaving standard output to results.
    EXPECT_THAT(run({"add", m_package, "--text", "x"}).err, HasSubstr("fileURL = " + m_package));
}

TEST_F(CliTest, ExportsLinkOrCopyPicturesAndIndentFurtherLines) {
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
    // A page gets copies of the pictures in a folder beside it.
    const std::string page = (m_directory / "My Notes.html").string();
    ASSERT_EQ(run({"export", "--format", "html", "--output", page, m_package}).exitCode, kSuccess);
    std::stringstream html;
    html << std::ifstream(page).rdbuf();
    EXPECT_THAT(html.str(), HasSubstr("<img src=\"My%20Notes_files/K1.png\""));
    EXPECT_TRUE(std::filesystem::exists(m_directory / "My Notes_files" / "K1.png"));
}

TEST_F(CliTest, PackageFailuresExitWithOneAndExplain) {
    Outcome missing = run({"export", m_package});
    EXPECT_EQ(missing.exitCode, kPackageFailure);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "quillery-cli: The notebook “Notes.quillery” doesn't exist.\n"
                           "  (NSCocoaErrorDomain 260)\n");
    EXPECT_EQ(run({"add", m_package, "--text", "t"}).exitCode, kPackageFailure);
    EXPECT_FALSE(std::filesystem::exists(m_package));

    std::filesystem::create_directory(m_package);
    std::ofstream(std::filesystem::path(m_package) / "X.journal") << R"({"diffs": [1]})";
    Outcome malformed = run({"find", m_package, "t"});
    EXPECT_EQ(malformed.exitCode, kPackageFailure);
    EXPECT_THAT(malformed.err, HasSubstr("“X.journal”"));
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
        BadUsage{"UnknownParent", {"add", "PKG", "--text", "t", "--parent", "X"}, "no note “X”"},
        BadUsage{"UnknownNote", {"export", "PKG", "--note", "X"}, "no note “X”"},
        BadUsage{"ImportWithoutFile", {"import", "PKG"}, "give a PACKAGE and a FILE"},
        BadUsage{"ImportFormatUnknown", {"import", "PKG", "notes.doc"}, "give --format"},
        BadUsage{"ImportFormatNamedBadly",
                 {"import", "PKG", "a.md", "--format", "rtf"},
                 "unknown format"},
        BadUsage{"NoQuery", {"find", "PKG"}, "no QUERY given"},
        BadUsage{"BlankQuery", {"find", "PKG", " "}, "the query has no words"},
        BadUsage{"FindFormat", {"find", "PKG", "a", "--format", "xml"}, "unknown format"},
        BadUsage{"StyleArgument", {"style", "--bogus"}, "unknown argument '--bogus'"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(CliTest, ImportAddsAnOutlineUnderANoteAndExportsItInEveryFormat) {
    run({"new", m_package});
    const std::string parent = add("Inbox");
    const std::string file = write("plan.md", "# Trip\n- [Map](https://map.org)\n  - *pack*\n");
    Outcome imported = run({"import", m_package, file, "--parent", parent});
    ASSERT_EQ(imported.exitCode, kSuccess) << imported.err;
    EXPECT_EQ(imported.out, "Imported 3 notes.\n");

    EXPECT_EQ(run({"export", "--format", "text", m_package}).out,
              "- Inbox\n  - Trip\n    - [Map](https://map.org)\n      - *pack*\n");
    Outcome subtree = run({"export", m_package, "--format", "opml", "--note", parent});
    EXPECT_THAT(subtree.out, HasSubstr("<body>\n    <outline text=\"Inbox\">\n      <outline "
                                       "text=\"Trip\">\n"));
    const std::string page = (m_directory / "out" / "Notes.html").string();
    std::filesystem::create_directory(m_directory / "out");
    ASSERT_EQ(run({"export", "--format", "html", "--output", page, m_package}).exitCode, kSuccess);
    std::stringstream html;
    html << std::ifstream(page).rdbuf();
    EXPECT_THAT(html.str(), HasSubstr("<li>[Map](https://map.org)\n<ul>\n<li>*pack*\n</li>"));
    EXPECT_THAT(run({"export", "--pretty", m_package}).out, HasSubstr("\"text\" : \"Trip\""));
}

struct BadFile {
    const char* name;
    const char* content;
    const char* message;

    friend void PrintTo(const BadFile& c, std::ostream* out) { *out << c.name; }
};

class CliBadImportTest : public CliTest, public ::testing::WithParamInterface<BadFile> {};

TEST_P(CliBadImportTest, NamesTheLineAndLeavesTheNotebookAlone) {
    run({"new", m_package});
    add("kept");
    const std::string before = run({"export", m_package}).out;
    const std::string file = GetParam().content ? write(GetParam().name, GetParam().content)
                                                : (m_directory / GetParam().name).string();
    Outcome result = run({"import", m_package, file});
    EXPECT_EQ(result.exitCode, kPackageFailure);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr(file + GetParam().message));
    EXPECT_EQ(run({"export", m_package}).out, before);
}

INSTANTIATE_TEST_SUITE_P(
    Files, CliBadImportTest,
    ::testing::Values(BadFile{"broken.opml", "<opml><body>\n<outline text=\"a\">\n</body></opml>",
                              ":3: the XML is not well-formed"},
                      BadFile{"missing.txt", nullptr, ": No such file"}),
    [](const auto& test) { return std::string(test.param.name).substr(0, 6); });

// Escape sequences a note or a file name may carry: a clipboard write (OSC 52), a screen clear, a
// window title and the one-byte C1 form of CSI.
constexpr std::string_view kSequences = "\x1b]52;c;cHduZWQ=\x07 \x1b[2J \x1b]0;title\x07 \xC2\x9B"
                                        "2J";

struct ShownCase {
    const char* name;
    std::vector<std::string>
        arguments; // "PACKAGE" stands for the package, "HOSTILE" for kSequences
    bool message;  // on standard error, escaped even to a pipe
};

class CliShownTest : public CliFixture, public ::testing::WithParamInterface<ShownCase> {
protected:
    Outcome runCase(bool toTerminal, bool raw) {
        std::vector<std::string> arguments = GetParam().arguments;
        for (std::string& argument : arguments) {
            if (argument == "PACKAGE")
                argument = m_package;
            if (const auto at = argument.find("HOSTILE"); at != std::string::npos)
                argument.replace(at, 7, kSequences);
        }
        if (raw)
            arguments.push_back("--raw");
        return run(arguments, toTerminal);
    }
};

TEST_P(CliShownTest, ControlCharactersAreShownEscapedOnATerminalUnlessRaw) {
    run({"new", m_package});
    add("note " + std::string(kSequences) + "\nsecond");
    write("Notes.quillery/client " + std::string(kSequences) + ".journal", "{\"diffs\": []}\n");
    const auto& stream = [&](const Outcome& outcome) {
        return GetParam().message ? outcome.err : outcome.out;
    };
    const std::string escaped = stream(runCase(true, false));
    EXPECT_THAT(escaped,
                HasSubstr(R"(\x1b]52;c;cHduZWQ=\x07 \x1b[2J \x1b]0;title\x07 \xc2\x9b2J)"));
    EXPECT_EQ(escaped.find_first_of("\x1b\x07\x9b"), std::string::npos);
    if (GetParam().message)
        return;
    EXPECT_THAT(stream(runCase(true, true)), HasSubstr(kSequences));
    EXPECT_THAT(stream(runCase(false, false)), HasSubstr(kSequences))
        << "pipes and files get the bytes";
}

INSTANTIATE_TEST_SUITE_P(
    Commands, CliShownTest,
    ::testing::Values(ShownCase{"markdown", {"export", "--format", "markdown", "PACKAGE"}, false},
                      ShownCase{"find", {"find", "PACKAGE", "note"}, false},
                      ShownCase{"info", {"info", "PACKAGE"}, false},
                      ShownCase{
                          "parent", {"add", "PACKAGE", "--text", "t", "--parent", "HOSTILE"}, true},
                      ShownCase{"package", {"info", "HOSTILE"}, true},
                      ShownCase{"option", {"find", "PACKAGE", "note", "--HOSTILE"}, true}),
    [](const auto& test) { return std::string(test.param.name); });

// Counts what is written and keeps the end of it.
class TailBuffer : public std::streambuf {
public:
    std::size_t size = 0;
    std::string tail;

protected:
    std::streamsize xsputn(const char* data, std::streamsize count) override {
        size += static_cast<std::size_t>(count);
        tail.append(data, static_cast<std::size_t>(count));
        if (tail.size() > 4096)
            tail.erase(0, tail.size() - 256);
        return count;
    }
    int_type overflow(int_type c) override {
        if (c != traits_type::eof())
            xsputn(reinterpret_cast<const char*>(&c), 1);
        return c;
    }
};

TEST_F(CliTest, AMillionDeepChainIsReadWrittenAndFoundOnASmallStack) {
    constexpr std::size_t kDepth = testing_support::kDeepChain;
    const std::string last = "N" + std::to_string(kDepth - 1);
    std::filesystem::create_directory(m_package);
    {
        std::ofstream journal(std::filesystem::path(m_package) / "C.journal");
        journal << "{\"diffs\": [\n";
        for (std::size_t i = 0; i < kDepth; ++i)
            journal << (i ? ",\n" : "")
                    << R"({"timestamp": "2017-03-04T09:15:02GMT", "identifier": "N)" << i
                    << R"(", "text": ")" << (i + 1 < kDepth ? "n" : "bottom") << R"(", "parent": ")"
                    << (i ? "N" + std::to_string(i - 1) : std::string("root")) << "\"}";
        journal << "]}\n";
    }
    struct Expected {
        std::vector<std::string> arguments; // after the package
        std::string tail;
    };
    const std::string deepest = std::string(128, ' ') + "- bottom\n";
    const std::string deleted = "{\"identifier\":\"deleted\",\"text\":\"\",\"children\":[]}}\n";
    const std::vector<Expected> commands{
        {{"export", "--format", "json"}, "]}]}]},\"deleted\":" + deleted},
        {{"export", "--format", "json", "--pretty", "--note", last},
         "{\n  \"identifier\" : \"" + last +
             "\",\n  \"text\" : \"bottom\",\n  \"children\" : []\n}\n"},
        {{"export", "--format", "markdown"}, deepest},
        {{"export", "--format", "text"}, deepest},
        {{"export", "--format", "opml"}, "</outline>\n  </body>\n</opml>\n"},
        {{"export", "--format", "html"}, "</ul>\n</li>\n</ul>\n</body>\n</html>\n"},
        {{"find", "bottom"}, " > n > bottom\tbottom\n"},
        {{"info"}, "Notes: " + std::to_string(kDepth) + "\nDeleted notes: 0\n"},
    };
    testing_support::runOnSmallStack([&] {
        for (const Expected& command : commands) {
            std::vector<std::string> arguments{command.arguments.front(), m_package};
            arguments.insert(arguments.end(), command.arguments.begin() + 1,
                             command.arguments.end());
            TailBuffer buffer;
            std::ostream out(&buffer);
            std::istringstream in;
            std::ostringstream err;
            const std::string name = ::testing::PrintToString(command.arguments);
            ASSERT_EQ(runCli(arguments, in, out, err), kSuccess) << name << err.str();
            EXPECT_THAT(buffer.tail, HasSubstr(command.tail)) << name;
            // Indentation grows with depth only up to a cap, so output grows with the notes.
            EXPECT_LT(buffer.size, 1000 * kDepth) << name;
        }
        const std::string opml = (m_directory / "deep.opml").string();
        const std::string copy = (m_directory / "Copy.quillery").string();
        ASSERT_EQ(run({"export", "--format", "opml", "--output", opml, m_package}).exitCode,
                  kSuccess);
        ASSERT_EQ(run({"new", copy}).exitCode, kSuccess);
        Outcome imported = run({"import", copy, opml});
        EXPECT_EQ(imported.out, "Imported " + std::to_string(kDepth) + " notes.\n") << imported.err;
        EXPECT_THAT(run({"info", copy}).out, HasSubstr("Notes: " + std::to_string(kDepth) + "\n"));
        EXPECT_EQ(run({"add", m_package, "--text", "below", "--parent", last}).exitCode, kSuccess);
    });
}

} // namespace
} // namespace quillery::cli
