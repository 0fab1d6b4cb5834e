#include "columns/StyledTextLayout.h"

#include "QtPrinters.h"

#include <QApplication>
#include <QPalette>

#include <gtest/gtest.h>

namespace quillery {
namespace {

// How a note's markdown is drawn: "fonts" has a letter per styled run (b bold, i italic, - other)
// and "lines" one per line laid out ('|' at the left edge, '>' indented) in a row that has room
// for one of the long words a line.
struct Drawn {
    const char* name;
    const char* text;
    const char* fonts;
    const char* lines;
};

class MarkdownDrawing : public ::testing::TestWithParam<Drawn> {};

TEST_P(MarkdownDrawing, StylesRunsAndIndentsWrappedListItems) {
    StyledTextLayout layout(GetParam().text, QApplication::palette());
    layout.layout(160);
    std::string fonts;
    for (const QTextLayout::FormatRange& range : layout.textLayout().formats()) {
        const QFont font = range.format.font();
        fonts += font.bold() ? 'b' : font.italic() ? 'i' : '-';
    }
    std::string lines;
    for (int line = 0; line < layout.textLayout().lineCount(); ++line)
        lines += layout.textLayout().lineAt(line).x() > 0 ? '>' : '|';
    EXPECT_EQ(fonts, GetParam().fonts);
    EXPECT_EQ(lines, GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(
    Notes, MarkdownDrawing,
    ::testing::Values(
        Drawn{"BoldAndItalic", "a **b** *c*", "-b-i", "|"},
        Drawn{"ABulletItemWrapsUnderItsText", "- Wordwordword wordwordword wordwordword", "--",
              "|>>"},
        Drawn{"ANumberedItemToo", "12. Wordwordword wordwordword wordwordword", "--", "|>>"},
        Drawn{"APlainLineWrapsToTheEdge", "Wordwordword wordwordword wordwordword", "-", "|||"},
        Drawn{"TheLineAfterAnItemIsNotIndented", "- a\nWordwordword wordwordword wordwordword",
              "---", "||||"}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(LongNote, ShowsWholeLinesUpToTheBoxAndSaysItIsCut) {
    std::string text;
    for (int line = 0; line < 200; ++line)
        text += "line\n";
    StyledTextLayout layout(text, QApplication::palette());
    const qreal height = layout.layout(300);
    EXPECT_TRUE(layout.isCut());
    EXPECT_LE(height, StyledTextLayout::kMaxHeight);
    EXPECT_GT(height, StyledTextLayout::kMaxHeight - layout.lastLineHeight());
    StyledTextLayout shortNote("line", QApplication::palette());
    shortNote.layout(300);
    EXPECT_FALSE(shortNote.isCut());
}

} // namespace
} // namespace quillery
