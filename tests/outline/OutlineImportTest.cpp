#include "outline/OutlineImport.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

// An outline as lines: two spaces per level, line feeds in a text as "⏎", an address in <>.
std::string describe(const Outline& outline) {
    std::string out;
    for (const OutlineNote& note : outline.notes()) {
        out.append(2 * note.depth, ' ');
        for (char c : note.text)
            out += c == '\n' ? std::string("⏎") : std::string(1, c);
        if (note.url)
            out += " <" + *note.url + ">";
        out += '\n';
    }
    return out;
}

struct ImportCase {
    const char* name;
    ImportFormat format;
    std::string input;
    std::string expected; // describe() of the outline, or "line N" for an error there

    friend void PrintTo(const ImportCase& c, std::ostream* out) { *out << c.name; }
};

class OutlineImportTest : public ::testing::TestWithParam<ImportCase> {};

TEST_P(OutlineImportTest, ReadsTheOutlineOrNamesTheBadLine) {
    const ParsedOutline parsed = parseOutline(GetParam().input, GetParam().format);
    if (parsed.error) {
        EXPECT_TRUE(parsed.outline.empty()) << "nothing of a bad file is kept";
        EXPECT_EQ("line " + std::to_string(parsed.error->line), GetParam().expected)
            << parsed.error->message;
    } else {
        EXPECT_EQ(describe(parsed.outline), GetParam().expected);
    }
}

constexpr auto kText = ImportFormat::text;
constexpr auto kMarkdown = ImportFormat::markdown;
constexpr auto kOpml = ImportFormat::opml;

std::string opml(const std::string& body) {
    return "<?xml version=\"1.0\"?>\n<opml "
           "version=\"2.0\"><head><title>t</title></head>\n<body>\n" +
           body + "</body></opml>\n";
}

INSTANTIATE_TEST_SUITE_P(
    Formats, OutlineImportTest,
    ::testing::Values(
        // Pasted text: one note a line, indentation or markers making children.
        ImportCase{"OneLine", kText, "just this", "just this\n"},
        ImportCase{"SpacesMakeChildren", kText, "a\n  b\n    c\n  d\ne\n",
                   "a\n  b\n    c\n  d\ne\n"},
        ImportCase{"TabsMakeChildren", kText, "a\r\n\tb\r\n\t\tc\r\n", "a\n  b\n    c\n"},
        ImportCase{"Markers", kText, "- a\n  * b\n  + c\n1. d\n2) e\n-\n", "a\n  b\n  c\nd\ne\n\n"},
        ImportCase{"UnevenDedentGoesUnderTheNearestShallower", kText, "a\n    b\n  c\n",
                   "a\n  b\n  c\n"},
        ImportCase{"BlankLinesBetweenNotesDropped", kText, "a\n\n\n  b\n", "a\n  b\n"},
        ImportCase{"FurtherLinesOfABulletedNote", kText, "- a\n  more\n\n  \\- still a\n  - b\n",
                   "a⏎more⏎⏎- still a\n  b\n"},
        ImportCase{"MarkerNeedsASpace", kText, "-5 degrees\n1.5 kg\n", "-5 degrees\n1.5 kg\n"},
        ImportCase{"TextNotUtf8", kText, "fine\nbad \xC3\x28\n", "line 2"},
        // Markdown outlines from other outliners.
        ImportCase{"NestedItemsKeepTheirMarkdown", kMarkdown,
                   "- *Plan* [site](https://x.org)\n  - `code` step\n    1. first\n- **b**\n",
                   "*Plan* [site](https://x.org)\n  `code` step\n    first\n**b**\n"},
        ImportCase{"HeadingsMakeLevels", kMarkdown,
                   "# A\n- a1\n## B\ntext of B\n### C\n# D\n- d1\n",
                   "A\n  a1\n  B\n    text of B\n    C\nD\n  d1\n"},
        ImportCase{"LooseListsAndLazyLines", kMarkdown, "- a\n\n- b\ncontinued\n\n  second\n",
                   "a\nb⏎continued⏎⏎second\n"},
        ImportCase{"FencedCodeStaysInTheItem", kMarkdown, "- a\n\n  ```\n  x\n  ```\n- b\n",
                   "a⏎⏎```⏎x⏎```\nb\n"},
        ImportCase{"EmptyItemsAndBareMarkers", kMarkdown, "-\n- \\\n  x\n", "\n⏎x\n"},
        ImportCase{"MarkdownNotUtf8", kMarkdown, "- a\n- \xFF\n", "line 2"},
        // OPML.
        ImportCase{"OutlinesNotesAndAddresses", kOpml,
                   opml("<outline text=\"a &amp; b\" _note=\"the note\">\n"
                        "  <outline text=\"c\" url=\"https://c.org\"/>\n"
                        "  <foo><outline text=\"skipped\"/></foo>\n"
                        "</outline>\n<outline text=\"two&#10;lines\" htmlUrl=\"h\"/>\n"),
                   "a & b\n  the note\n  c <https://c.org>\ntwo⏎lines <h>\n"},
        ImportCase{"MissingTextIsEmpty", kOpml, opml("<outline/>\n"), "\n"},
        ImportCase{"UnclosedElement", kOpml, opml("<outline text=\"a\">\n"), "line 5"},
        ImportCase{"NotXml", kOpml, "- a list\n", "line 1"},
        ImportCase{"NoOpmlElement", kOpml, "<?xml version=\"1.0\"?>\n<rss/>\n", "line 1"},
        ImportCase{"NoBody", kOpml, "<?xml version=\"1.0\"?>\n\n<opml version=\"2.0\"/>\n",
                   "line 3"},
        ImportCase{"OpmlTextNotUtf8", kOpml,
                   opml("<outline text=\"ok\"/>\n<outline text=\"\xFF\"/>\n"), "line 5"}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace quillery
