#include "markdown/MarkdownStyler.h"

#include "markdown/RunNotation.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillery {
namespace {

using testing::newline;
using testing::text;
using Runs = std::vector<StyledRun>;

constexpr LineType h1 = LineType::h1;
constexpr LineType h2 = LineType::h2;
constexpr LineStyle italic = LineStyle::italic;
constexpr LineStyle bold = LineStyle::bold;
constexpr LineStyle code = LineStyle::code;
constexpr LineStyle link = LineStyle::link;
constexpr LineStyle marker = LineStyle::listMarker;

struct StylingCase {
    const char* name;
    std::string input;
    Runs expected;
};

void PrintTo(const StylingCase& styling, std::ostream* out) {
    *out << styling.name;
}

Runs style(std::string_view input) {
    return MarkdownStyler(input).attributedString();
}

class Styling : public ::testing::TestWithParam<StylingCase> {};

TEST_P(Styling, GivesExactRuns) {
    Runs expected = GetParam().expected;
    expected.push_back(newline());
    EXPECT_EQ(style(GetParam().input), expected);
}

std::string caseName(const ::testing::TestParamInfo<StylingCase>& info) {
    return info.param.name;
}

// Every line ends in a terminator, which the cases leave out.
const StylingCase kCases[] = {
    // The documented examples of the dialect, run for run.
    {"EmptyText", "", {text(" ")}},
    {"PlainText", "abc", {text("abc")}},
    {"HashHeading", "# Title", {text("Title", h1)}},
    {"ClosingHashesRemoved", "## Title ##", {text("Title", h2)}},
    {"EveryHashOfRestRemoved", "# C# notes", {text("C notes", h1)}},
    {"NoSpaceAfterHashes", "#Title", {text("#Title")}},
    {"SevenHashes", "####### x", {text("####### x")}},
    {"EmptyHeading", "# ", {}},
    {"EqualsUnderline", "Title\n===", {text("Title", h1)}},
    {"ListItemUnderAParagraph",
     "Para\n- item",
     {text("Para"), newline(), text("\u2022 ", marker), text("item")}},
    {"CrLfYieldsEmptyLine", "a\r\nb", {text("a"), newline(), text(" "), newline(), text("b")}},
    {"Bold", "**bold** x", {text("bold", bold), text(" x")}},
    {"LoneAsterisk", "a * b", {text("a "), text("*"), text(" b")}},
    {"UnclosedSpanRunsToEnd", "a *b c", {text("a "), text("b c", italic)}},
    {"ItalicInsideWord", "2*3*4", {text("2"), text("3", italic), text("4")}},
    {"SnakeCase", "snake_case_name", {text("snake"), text("case", italic), text("name")}},
    {"NoNesting",
     "*a **b** c*",
     {text("a ", italic), text("b"), text("**"), text(" c"), text("*")}},
    {"MixedMarkerRun", "**_x_**", {text("x")}},
    {"CodeAtLineStartHasNoGap", "`ls`", {text("ls", code)}},
    {"CodeAfterTextNoTab", "say `x`", {text("say "), text("x", code)}},
    {"Link", "[text](note-target)", {text("text", link, "note-target")}},
    {"BracketWithoutTargetVanishes", "see [note]", {text("see ")}},
    {"EmptyLink", "[]()", {}},
    {"MarkerAfterLinkClosesIt", "[a](b)*c*", {text("a", link, "b"), text("c"), text("*")}},
    {"EscapedAsterisks", "\\*not\\*", {text("*"), text("not"), text("*")}},
    {"LoneBackslashSwallowed", "C:\\Users", {text("C:"), text("Users")}},
    {"EscapedMarkerBeforeSpaceDropped", "a \\_ b", {text("a "), text(" b")}},
    {"SixHashes", "###### x", {text("x", LineType::h6)}},
    {"ThreeHashesKeepsRemainder", "### a ##### b", {text("a ## b", LineType::h3)}},
    {"UnderlineOverridesPrefix", "# Title\n---", {text("Title", h2)}},
    {"UnderlineOfEmptyLine", "\n===", {text(" ", h1)}},
    {"NumberIsNoUnderline", "Total\n-5", {text("Total"), newline(), text("-5")}},
    {"OnlyTheNextLineIsConsumed", "a\n=\n=", {text("a", h1), newline(), text("=")}},
    {"CrLfSeparatesUnderline", "Title\r\n===", {text("Title"), newline(), text(" ", h1)}},
    {"TrailingNewlineIsNoUnderline", "Title\n", {text("Title"), newline(), text(" ")}},
    {"HeadingTextIsScanned", "## a *b*", {text("a ", h2), text("b", h2, italic)}},
    {"CodeAtHeadingStart", "# `x`", {text("x", h1, code)}},
    {"TrimsUnicodeSpaces", "# \u3000Title\u00A0", {text("Title", h1)}},
    {"TypeResetsAfterLine", "# a\nb", {text("a", h1), newline(), text("b")}},
    {"TextAfterLink", "[a](b) tail", {text("a", link, "b"), text(" tail")}},
    {"TargetEndsAtParenthesis", "[a](b(c))", {text("a", link, "b"), text("c))")}},
    {"RestOfLineAfterBracketIsTarget", "[a] b c", {text("a", link, " b c")}},
    {"BracketBeforePunctuationTriesLink", "x [(y)", {text("x ")}},
    {"EscapeBeforeLinkKeepsNoTarget", "\\*[a](t)", {text("*", link), text("a", link, "t")}},
    {"EscapedBackslashShowsNothing", "a\\\\b", {text("a"), text("b")}},
    {"EscapeInsideOpeningRun", "*\\_x*", {text("_", italic), text("x", italic)}},
    {"TrailingBackslashStaysAMarker", "x *\\", {text("x "), text("*\\")}},
    {"TrailingBackslashInOpeningRun", "*\\y", {text("y")}},
    {"ClosingRunNeedNotMatch", "_a`b", {text("a", italic), text("b")}},
    {"CodeSpanCannotHoldMarkers", "`a*b`", {text("a", code), text("b"), text("`")}},
    // Where this dialect departs from the classic one: underlines, lists, code at a line's start
    // and empty links.
    {"DashItemsUnderAHeading",
     "Shopping\n- eggs\n- milk",
     {text("Shopping"), newline(), text("\u2022 ", marker), text("eggs"), newline(),
      text("\u2022 ", marker), text("milk")}},
    {"AsteriskItem",
     "* *soft* cheese",
     {text("\u2022 ", marker), text("soft", italic), text(" cheese")}},
    {"NumberedItemKeepsItsNumber", "12. step", {text("12. ", marker), text("step")}},
    {"NoSpaceNoItem", "-x", {text("-x")}},
    {"NumberWithoutDotIsText", "3 eggs", {text("3 eggs")}},
    {"ItemInAHeadingIsText", "# - x", {text("- x", h1)}},
    {"UnderlineWithSpaces", "Title\n = = ", {text("Title", h1)}},
    {"DashesWithSpacesUnderline", "Title\n- - -", {text("Title", h2)}},
    {"MixedUnderlineIsText", "Title\n=-=", {text("Title"), newline(), text("=-=")}},
    {"SpacesAloneAreNoUnderline", "Title\n  ", {text("Title"), newline(), text("  ")}},
    {"UnderlinedItemIsAHeading", "- a\n===", {text("\u2022 ", h1, marker), text("a", h1)}},
    {"CodeAfterListMarker", "- `make`", {text("\u2022 ", marker), text("make", code)}},
    {"EmptyLinkKeepsTheRest", "[text]() and more", {text("text"), text(" and more")}},
    {"EmptyLinkThenSpan", "see [a]() *b*", {text("see "), text("a"), text(" "), text("b", italic)}},
    {"EmptyLinkBeforeParenthesis", "[a]())", {text("a"), text(")")}},
    {"EveryLineTerminator",
     "a\nb\rc\vd\fe\u0085f\u2028g\u2029h",
     {text("a"), newline(), text("b"), newline(), text("c"), newline(), text("d"), newline(),
      text("e"), newline(), text("f"), newline(), text("g"), newline(), text("h")}},
    {"UnderlineAfterParagraphSeparator", "T\u2029---", {text("T", h2)}},
    {"OnlyNewlines", "\n\n", {text(" "), newline(), text(" "), newline(), text(" ")}},
    // Whether a marker run opens a span depends on the class of the character after it, which is
    // decided for the whole of Unicode, not only ASCII.
    {"InvertedQuestionMarkIsPunctuation", "a *¿b*", {text("a "), text("*"), text("¿b"), text("*")}},
    {"EmDashIsPunctuation", "a _—b_", {text("a "), text("_"), text("—b"), text("_")}},
    {"CurlyQuoteIsPunctuation", "a **“q”**", {text("a "), text("**"), text("“q”"), text("**")}},
    {"NoBreakSpaceIsWhitespace", "a *\u00A0b", {text("a "), text("*"), text("\u00A0b")}},
    {"AccentedLetterOpensSpan", "a *été*", {text("a "), text("été", italic)}},
    {"EmojiOpensSpan", "a *😀*", {text("a "), text("😀", italic)}},
    {"AstralLetterOpensSpan", "x **𝒳**", {text("x "), text("𝒳", bold)}},
    {"AstralPunctuationDoesNot", "x *𐄀y", {text("x "), text("*"), text("𐄀y")}},
    {"AstralHeading", "# 😀 ", {text("😀", h1)}},
    {"TripleAsterisk", "***", {}},
    {"EveryMarker", "*_`[\\", {}},
    {"EscapedMarkers", "\\*\\_", {text("*_")}},
    {"MarkersAfterText", "a **", {text("a "), text("**")}},
    {"OnlyHashes", "######", {text("######")}},
    // Bytes that are not UTF-8 each read as U+FFFD.
    // A stray continuation byte, a truncated sequence, an overlong "/", an encoded surrogate and a
    // code point past the maximum.
    {"BytesThatAreNotUtf8",
     "a\x80z\xE2\x80 \xC0\xAF \xED\xA0\x80 \xF4\x90\x80\x80",
     {text("a\uFFFDz\uFFFD\uFFFD \uFFFD\uFFFD \uFFFD\uFFFD\uFFFD \uFFFD\uFFFD\uFFFD\uFFFD")}},
    {"BadByteOpensSpan", "a *\xFF*", {text("a "), text("\uFFFD", italic)}},
    {"NulIsAnOrdinaryCharacter", std::string("a\0b", 3), {text(std::string("a\0b", 3))}},
};

INSTANTIATE_TEST_SUITE_P(Cases, Styling, ::testing::ValuesIn(kCases), caseName);

// About a megabyte of one piece repeated: inputs that once took time quadratic in their length
// (a few megabytes of "*\" took tens of seconds), so such a path makes the test time out.
struct LongInput {
    const char* name;
    std::string prefix, piece;
    std::size_t count;
    std::size_t runs;
    std::size_t probed; // the run compared with `expected`
    StyledRun expected;
};

void PrintTo(const LongInput& input, std::ostream* out) {
    *out << input.name;
}

std::string repeated(std::string_view piece, std::size_t count) {
    std::string out;
    out.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        out += piece;
    return out;
}

class StylingLongInputs : public ::testing::TestWithParam<LongInput> {};

TEST_P(StylingLongInputs, TakeLinearTime) {
    const LongInput& input = GetParam();
    const Runs runs = style(input.prefix + repeated(input.piece, input.count));
    ASSERT_EQ(runs.size(), input.runs);
    EXPECT_EQ(runs[input.probed], input.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Megabyte, StylingLongInputs,
    ::testing::Values(
        LongInput{"Spans", "", "word *em* ", 100'000, 200'002, 1, text("em", italic)},
        LongInput{"UnclosedCode", "a `", "x", 1 << 20, 3, 1, text(std::string(1 << 20, 'x'), code)},
        LongInput{"HashesInAHeading", "## ", "a##b", 50'000, 2, 0,
                  text(repeated("ab", 50'000), h2)},
        // The first "*" and the last backslash are markers; every other pair is an escaped "*".
        LongInput{"EscapedMarkers", "", "*\\", 1'000'000, 2, 0, text(std::string(999'999, '*'))},
        LongInput{"EscapedMarkersAfterWords", "", "*a\\", 349'525, 699'050, 1, text("*", italic)},
        LongInput{"LinkOpenings", "", "[a](", 262'144, 174'763, 1, text("a](")},
        LongInput{"Brackets", "", "[", 1 << 20, 1, 0, newline()},
        LongInput{"Hashes", "", "# ", 1 << 19, 1, 0, newline()},
        LongInput{"Dashes", "", "- ", 1 << 19, 3, 0, text("• ", LineType::body, marker)},
        LongInput{"Underlines", "", "-\n", 1 << 19, (1 << 19) + 2, 0, text("-", h2)},
        LongInput{"Headings", "", "a\n=\n", 1 << 18, (1 << 19) + 2, 0, text("a", h1)}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(StylingRepeatedly, SecondCallGivesTheSameRuns) {
    MarkdownStyler styler("# a\nb *c*\n---\n`d`");
    const Runs first = styler.attributedString();
    EXPECT_EQ(styler.attributedString(), first);
}

} // namespace
} // namespace quillery
