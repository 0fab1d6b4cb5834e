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
    EXPECT_EQ(style(GetParam().input), GetParam().expected);
}

std::string caseName(const ::testing::TestParamInfo<StylingCase>& info) {
    return info.param.name;
}

// The documented examples of the dialect, run for run.
INSTANTIATE_TEST_SUITE_P(
    DocumentedExamples, Styling,
    ::testing::Values(
        StylingCase{"EmptyText", "", {text(" "), newline()}},
        StylingCase{"PlainText", "abc", {text("abc"), newline()}},
        StylingCase{"HashHeading", "# Title", {text("Title", h1), newline()}},
        StylingCase{"ClosingHashesRemoved", "## Title ##", {text("Title", h2), newline()}},
        StylingCase{"EveryHashOfRestRemoved", "# C# notes", {text("C notes", h1), newline()}},
        StylingCase{"NoSpaceAfterHashes", "#Title", {text("#Title"), newline()}},
        StylingCase{"SevenHashes", "####### x", {text("####### x"), newline()}},
        StylingCase{"EmptyHeading", "# ", {newline()}},
        StylingCase{"EqualsUnderline", "Title\n===", {text("Title", h1), newline()}},
        StylingCase{"ListItemUnderAParagraph",
                    "Para\n- item",
                    {text("Para"), newline(), text("\u2022 ", marker), text("item"), newline()}},
        StylingCase{"CrLfYieldsEmptyLine",
                    "a\r\nb",
                    {text("a"), newline(), text(" "), newline(), text("b"), newline()}},
        StylingCase{"Bold", "**bold** x", {text("bold", bold), text(" x"), newline()}},
        StylingCase{"LoneAsterisk", "a * b", {text("a "), text("*"), text(" b"), newline()}},
        StylingCase{
            "UnclosedSpanRunsToEnd", "a *b c", {text("a "), text("b c", italic), newline()}},
        StylingCase{
            "ItalicInsideWord", "2*3*4", {text("2"), text("3", italic), text("4"), newline()}},
        StylingCase{"SnakeCase",
                    "snake_case_name",
                    {text("snake"), text("case", italic), text("name"), newline()}},
        StylingCase{"NoNesting",
                    "*a **b** c*",
                    {text("a ", italic), text("b"), text("**"), text(" c"), text("*"), newline()}},
        StylingCase{"MixedMarkerRun", "**_x_**", {text("x"), newline()}},
        StylingCase{"CodeAtLineStartHasNoGap", "`ls`", {text("ls", code), newline()}},
        StylingCase{"CodeAfterTextNoTab", "say `x`", {text("say "), text("x", code), newline()}},
        StylingCase{"Link", "[text](note-target)", {text("text", link, "note-target"), newline()}},
        StylingCase{"BracketWithoutTargetVanishes", "see [note]", {text("see "), newline()}},
        StylingCase{"EmptyLink", "[]()", {newline()}},
        StylingCase{"MarkerAfterLinkClosesIt",
                    "[a](b)*c*",
                    {text("a", link, "b"), text("c"), text("*"), newline()}},
        StylingCase{
            "EscapedAsterisks", "\\*not\\*", {text("*"), text("not"), text("*"), newline()}},
        StylingCase{"LoneBackslashSwallowed", "C:\\Users", {text("C:"), text("Users"), newline()}},
        StylingCase{
            "EscapedMarkerBeforeSpaceDropped", "a \\_ b", {text("a "), text(" b"), newline()}}),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    Headings, Styling,
    ::testing::Values(
        StylingCase{"SixHashes", "###### x", {text("x", LineType::h6), newline()}},
        StylingCase{"ThreeHashesKeepsRemainder",
                    "### a ##### b",
                    {text("a ## b", LineType::h3), newline()}},
        StylingCase{"UnderlineOverridesPrefix", "# Title\n---", {text("Title", h2), newline()}},
        StylingCase{"UnderlineOfEmptyLine", "\n===", {text(" ", h1), newline()}},
        StylingCase{
            "NumberIsNoUnderline", "Total\n-5", {text("Total"), newline(), text("-5"), newline()}},
        StylingCase{"OnlyTheNextLineIsConsumed",
                    "a\n=\n=",
                    {text("a", h1), newline(), text("="), newline()}},
        StylingCase{"CrLfSeparatesUnderline",
                    "Title\r\n===",
                    {text("Title"), newline(), text(" ", h1), newline()}},
        StylingCase{"TrailingNewlineIsNoUnderline",
                    "Title\n",
                    {text("Title"), newline(), text(" "), newline()}},
        StylingCase{
            "HeadingTextIsScanned", "## a *b*", {text("a ", h2), text("b", h2, italic), newline()}},
        StylingCase{"CodeAtHeadingStart", "# `x`", {text("x", h1, code), newline()}},
        StylingCase{"TrimsUnicodeSpaces", "# \u3000Title\u00A0", {text("Title", h1), newline()}},
        StylingCase{
            "TypeResetsAfterLine", "# a\nb", {text("a", h1), newline(), text("b"), newline()}}),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    LinksAndEscapes, Styling,
    ::testing::Values(
        StylingCase{
            "TextAfterLink", "[a](b) tail", {text("a", link, "b"), text(" tail"), newline()}},
        StylingCase{
            "TargetEndsAtParenthesis", "[a](b(c))", {text("a", link, "b"), text("c))"), newline()}},
        StylingCase{
            "RestOfLineAfterBracketIsTarget", "[a] b c", {text("a", link, " b c"), newline()}},
        StylingCase{"BracketBeforePunctuationTriesLink", "x [(y)", {text("x "), newline()}},
        StylingCase{"EscapeBeforeLinkKeepsNoTarget",
                    "\\*[a](t)",
                    {text("*", link), text("a", link, "t"), newline()}},
        StylingCase{"EscapedBackslashShowsNothing", "a\\\\b", {text("a"), text("b"), newline()}},
        StylingCase{
            "EscapeInsideOpeningRun", "*\\_x*", {text("_", italic), text("x", italic), newline()}},
        StylingCase{"TrailingBackslashStaysAMarker", "x *\\", {text("x "), text("*\\"), newline()}},
        StylingCase{"TrailingBackslashInOpeningRun", "*\\y", {text("y"), newline()}},
        StylingCase{"ClosingRunNeedNotMatch", "_a`b", {text("a", italic), text("b"), newline()}},
        StylingCase{"CodeSpanCannotHoldMarkers",
                    "`a*b`",
                    {text("a", code), text("b"), text("`"), newline()}}),
    caseName);

// Where this dialect departs from the classic one: underlines, lists, code at a line's start and
// empty links.
INSTANTIATE_TEST_SUITE_P(
    ListsAndUnderlines, Styling,
    ::testing::Values(
        StylingCase{"DashItemsUnderAHeading",
                    "Shopping\n- eggs\n- milk",
                    {text("Shopping"), newline(), text("\u2022 ", marker), text("eggs"), newline(),
                     text("\u2022 ", marker), text("milk"), newline()}},
        StylingCase{"AsteriskItem",
                    "* *soft* cheese",
                    {text("\u2022 ", marker), text("soft", italic), text(" cheese"), newline()}},
        StylingCase{"NumberedItemKeepsItsNumber",
                    "12. step",
                    {text("12. ", marker), text("step"), newline()}},
        StylingCase{"NoSpaceNoItem", "-x", {text("-x"), newline()}},
        StylingCase{"NumberWithoutDotIsText", "3 eggs", {text("3 eggs"), newline()}},
        StylingCase{"ItemInAHeadingIsText", "# - x", {text("- x", h1), newline()}},
        StylingCase{"UnderlineWithSpaces", "Title\n = = ", {text("Title", h1), newline()}},
        StylingCase{"DashesWithSpacesUnderline", "Title\n- - -", {text("Title", h2), newline()}},
        StylingCase{"MixedUnderlineIsText",
                    "Title\n=-=",
                    {text("Title"), newline(), text("=-="), newline()}},
        StylingCase{"SpacesAloneAreNoUnderline",
                    "Title\n  ",
                    {text("Title"), newline(), text("  "), newline()}},
        StylingCase{"UnderlinedItemIsAHeading",
                    "- a\n===",
                    {text("\u2022 ", h1, marker), text("a", h1), newline()}},
        StylingCase{"CodeAfterListMarker",
                    "- `make`",
                    {text("\u2022 ", marker), text("make", code), newline()}},
        StylingCase{"EmptyLinkKeepsTheRest",
                    "[text]() and more",
                    {text("text"), text(" and more"), newline()}},
        StylingCase{"EmptyLinkThenSpan",
                    "see [a]() *b*",
                    {text("see "), text("a"), text(" "), text("b", italic), newline()}},
        StylingCase{"EmptyLinkBeforeParenthesis", "[a]())", {text("a"), text(")"), newline()}}),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    LineSeparators, Styling,
    ::testing::Values(
        StylingCase{"LineFeed", "a\nb", {text("a"), newline(), text("b"), newline()}},
        StylingCase{"CarriageReturn", "a\rb", {text("a"), newline(), text("b"), newline()}},
        StylingCase{"VerticalTab", "a\vb", {text("a"), newline(), text("b"), newline()}},
        StylingCase{"FormFeed", "a\fb", {text("a"), newline(), text("b"), newline()}},
        StylingCase{"NextLine", "a\u0085b", {text("a"), newline(), text("b"), newline()}},
        StylingCase{"LineSeparator", "a\u2028b", {text("a"), newline(), text("b"), newline()}},
        StylingCase{"ParagraphSeparator", "a\u2029b", {text("a"), newline(), text("b"), newline()}},
        StylingCase{"UnderlineAfterParagraphSeparator", "T\u2029---", {text("T", h2), newline()}},
        StylingCase{"OnlyNewlines",
                    "\n\n",
                    {text(" "), newline(), text(" "), newline(), text(" "), newline()}}),
    caseName);

// Whether a marker run opens a span depends on the class of the character after it, which is
// decided for the whole of Unicode, not only ASCII.
INSTANTIATE_TEST_SUITE_P(
    NonAsciiCharacters, Styling,
    ::testing::Values(
        StylingCase{"InvertedQuestionMarkIsPunctuation",
                    "a *¿b*",
                    {text("a "), text("*"), text("¿b"), text("*"), newline()}},
        StylingCase{"EmDashIsPunctuation",
                    "a _—b_",
                    {text("a "), text("_"), text("—b"), text("_"), newline()}},
        StylingCase{"CurlyQuoteIsPunctuation",
                    "a **“q”**",
                    {text("a "), text("**"), text("“q”"), text("**"), newline()}},
        StylingCase{"NoBreakSpaceIsWhitespace",
                    "a *\u00A0b",
                    {text("a "), text("*"), text("\u00A0b"), newline()}},
        StylingCase{
            "AccentedLetterOpensSpan", "a *été*", {text("a "), text("été", italic), newline()}},
        StylingCase{"EmojiOpensSpan", "a *😀*", {text("a "), text("😀", italic), newline()}},
        StylingCase{"AstralLetterOpensSpan", "x **𝒳**", {text("x "), text("𝒳", bold), newline()}},
        StylingCase{
            "AstralPunctuationDoesNot", "x *𐄀y", {text("x "), text("*"), text("𐄀y"), newline()}},
        StylingCase{"AstralHeading", "# 😀 ", {text("😀", h1), newline()}}),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    OnlyMarkers, Styling,
    ::testing::Values(StylingCase{"TripleAsterisk", "***", {newline()}},
                      StylingCase{"EveryMarker", "*_`[\\", {newline()}},
                      StylingCase{"EscapedMarkers", "\\*\\_", {text("*_"), newline()}},
                      StylingCase{"MarkersAfterText", "a **", {text("a "), text("**"), newline()}},
                      StylingCase{"OnlyHashes", "######", {text("######"), newline()}}),
    caseName);

// Bytes that are not UTF-8 each read as U+FFFD.
INSTANTIATE_TEST_SUITE_P(
    InvalidUtf8, Styling,
    ::testing::Values(
        StylingCase{"StrayContinuationByte", "a\x80z", {text("a\uFFFDz"), newline()}},
        StylingCase{"TruncatedSequence", "a\xE2\x80", {text("a\uFFFD\uFFFD"), newline()}},
        StylingCase{"OverlongSlash", "\xC0\xAF", {text("\uFFFD\uFFFD"), newline()}},
        StylingCase{"EncodedSurrogate", "\xED\xA0\x80", {text("\uFFFD\uFFFD\uFFFD"), newline()}},
        StylingCase{
            "PastMaximum", "\xF4\x90\x80\x80", {text("\uFFFD\uFFFD\uFFFD\uFFFD"), newline()}},
        StylingCase{
            "BadByteOpensSpan", "a *\xFF*", {text("a "), text("\uFFFD", italic), newline()}},
        StylingCase{"NulIsAnOrdinaryCharacter",
                    std::string("a\0b", 3),
                    {text(std::string("a\0b", 3)), newline()}}),
    caseName);

TEST(StylingLongLines, StylesEverySpanOfAMegabyteLine) {
    std::string line;
    constexpr int kSpans = 100'000;
    for (int i = 0; i < kSpans; ++i) {
        line += "word *em* ";
    }
    const Runs runs = style(line);
    ASSERT_EQ(runs.size(), 2u * kSpans + 2); // texts around the spans, and the terminator
    EXPECT_EQ(runs[1], text("em", italic));
    EXPECT_EQ(runs[runs.size() - 2], text(" "));
}

TEST(StylingLongLines, UnclosedSpanRunsToTheEndOfALongLine) {
    const std::string rest(1 << 20, 'x');
    EXPECT_EQ(style("a `" + rest), (Runs{text("a "), text(rest, code), newline()}));
}

TEST(StylingLongLines, LongHeadingLosesAllItsHashes) {
    std::string line = "## ";
    for (int i = 0; i < 50'000; ++i) {
        line += "a##b";
    }
    const Runs runs = style(line);
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[0].text.size(), 100'000u);
    EXPECT_EQ(runs[0].lineType, h2);
}

// A run of escaped markers as long as the line: splitting it must take linear time, or a few
// megabytes of "*\\" take tens of seconds.
TEST(StylingLongLines, LongRunOfEscapedMarkersIsSplitInOnePass) {
    std::string line;
    for (int i = 0; i < 1'000'000; ++i) {
        line += "*\\";
    }
    // The first "*" and the last backslash are markers; every other pair is an escaped "*".
    const Runs runs = style(line);
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[0].text, std::string(999'999, '*'));
}

TEST(StylingRepeatedly, SecondCallGivesTheSameRuns) {
    MarkdownStyler styler("# a\nb *c*\n---\n`d`");
    const Runs first = styler.attributedString();
    EXPECT_EQ(styler.attributedString(), first);
}

} // namespace
} // namespace quillery
