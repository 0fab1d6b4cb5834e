#include "markdown/Styles.h"

#include "markdown/MarkdownStyler.h"

#include <gtest/gtest.h>
#include <string>

namespace quillery {
namespace {

void expectColorNear(const Color& actual, const Color& expected) {
    constexpr double kTolerance = 0.0005;
    EXPECT_NEAR(actual.red, expected.red, kTolerance);
    EXPECT_NEAR(actual.green, expected.green, kTolerance);
    EXPECT_NEAR(actual.blue, expected.blue, kTolerance);
    EXPECT_NEAR(actual.alpha, expected.alpha, kTolerance);
}

TEST(SharedColors, CodeGreensOfTheCellsMatchTheirRgb) {
    expectColorNear(Color::fromHsba(0.2, 0.7, 0.5, 1.0), {0.43, 0.5, 0.15, 1.0});
    expectColorNear(Color::fromHsba(0.24, 0.8, 0.5, 1.0), {0.324, 0.5, 0.1, 1.0});
}

TEST(SharedColors, HueWrapsAroundTheWheel) {
    expectColorNear(Color::fromHsba(1.0, 1.0, 1.0, 1.0), {1, 0, 0, 1});
    expectColorNear(Color::fromHsba(0.5, 1.0, 1.0, 1.0), {0, 1, 1, 1});
    expectColorNear(Color::fromHsba(0.9, 0.0, 0.3, 1.0), Color::fromWhite(0.3, 1.0));
}

TEST(BasicStylesDefaults, MonospaceNameAndOpaqueBlack) {
    const BasicStyles style;
    EXPECT_EQ(style.fontName, fontfamilies::monospace());
    EXPECT_EQ(style.color, (Color{0, 0, 0, 1}));
}

struct TextStyleCase {
    MyFontTextStyle style;
    const std::string& (*family)();
    double pointSize;

    friend void PrintTo(const TextStyleCase& c, std::ostream* out) {
        *out << "style " << static_cast<int>(c.style) << ": " << c.family() << " " << c.pointSize;
    }
};

class TextStyleFonts : public ::testing::TestWithParam<TextStyleCase> {};

TEST_P(TextStyleFonts, FamilyAndSizeFromTheTable) {
    EXPECT_EQ(FontForTextStyle(GetParam().style),
              (FontSpec{GetParam().family(), GetParam().pointSize}));
    EXPECT_EQ(FontNameForTextStyle(GetParam().style), fontfamilies::monospace());
}

INSTANTIATE_TEST_SUITE_P(
    Table, TextStyleFonts,
    ::testing::Values(TextStyleCase{MyFontTextStyle::body, fontfamilies::sans, 14},
                      TextStyleCase{MyFontTextStyle::title1, fontfamilies::serif, 22},
                      TextStyleCase{MyFontTextStyle::title2, fontfamilies::serif, 18},
                      TextStyleCase{MyFontTextStyle::headline, fontfamilies::serif, 16},
                      TextStyleCase{MyFontTextStyle::subheadline, fontfamilies::sans, 14},
                      TextStyleCase{MyFontTextStyle::footnote, fontfamilies::sans, 10}));

// Every slot gets its own colour, so a test can tell which slot a run was coloured from.
class RunPresentationTest : public ::testing::Test {
protected:
    static Color grey(int step) { return Color::fromWhite(step / 10.0, 1.0); }

    RunPresentation presentFirstRun(const std::string& text) {
        MarkdownStyler styler(text);
        BasicStyles* slots[] = {&styler.h1,   &styler.h2,     &styler.h3,   &styler.h4,
                                &styler.h5,   &styler.h6,     &styler.body, &styler.link,
                                &styler.bold, &styler.italic, &styler.code};
        int step = 0;
        for (BasicStyles* slot : slots) {
            slot->color = grey(step++);
        }
        const std::vector<StyledRun> runs = styler.attributedString();
        return styler.presentation(runs.at(m_runIndex));
    }

    std::size_t m_runIndex = 0;
};

struct LineTypeCase {
    std::string input;
    MyFontTextStyle textStyle;
    int slotStep;

    friend void PrintTo(const LineTypeCase& c, std::ostream* out) {
        *out << '"' << c.input << "\": style " << static_cast<int>(c.textStyle) << ", slot step "
             << c.slotStep;
    }
};

class LineTypePresentation : public RunPresentationTest,
                             public ::testing::WithParamInterface<LineTypeCase> {};

TEST_P(LineTypePresentation, FontFromTextStyleColourFromSlot) {
    const RunPresentation shown = presentFirstRun(GetParam().input);
    EXPECT_EQ(shown.font, FontForTextStyle(GetParam().textStyle));
    EXPECT_EQ(shown.foreground, grey(GetParam().slotStep));
    EXPECT_FALSE(shown.link);
}

INSTANTIATE_TEST_SUITE_P(Table, LineTypePresentation,
                         ::testing::Values(LineTypeCase{"# x", MyFontTextStyle::title1, 0},
                                           LineTypeCase{"## x", MyFontTextStyle::title2, 1},
                                           LineTypeCase{"### x", MyFontTextStyle::title2, 2},
                                           LineTypeCase{"#### x", MyFontTextStyle::headline, 3},
                                           LineTypeCase{"##### x", MyFontTextStyle::subheadline, 4},
                                           LineTypeCase{"###### x", MyFontTextStyle::footnote, 5},
                                           LineTypeCase{"x", MyFontTextStyle::body, 6}));

TEST(DefaultPresentation, HeadingIsSerifEighteenBlackThenBareLineFeed) {
    MarkdownStyler styler("## Title");
    const std::vector<StyledRun> runs = styler.attributedString();
    ASSERT_EQ(runs.size(), 2u);
    const RunPresentation title = styler.presentation(runs[0]);
    EXPECT_EQ(title.font, (FontSpec{fontfamilies::serif(), 18}));
    EXPECT_EQ(title.foreground, (Color{0, 0, 0, 1}));
    const RunPresentation terminator = styler.presentation(runs[1]);
    EXPECT_EQ(terminator.font, FontSpec{});
    EXPECT_FALSE(terminator.link);
}

TEST(DefaultPresentation, SmallHeadingsUseSansSizes) {
    MarkdownStyler h6("###### x");
    EXPECT_EQ(h6.presentation(h6.attributedString()[0]).font, (FontSpec{fontfamilies::sans(), 10}));
    MarkdownStyler h5("##### x");
    EXPECT_EQ(h5.presentation(h5.attributedString()[0]).font,
              FontForTextStyle(MyFontTextStyle::body));
}

TEST_F(RunPresentationTest, CodeInHeadingKeepsLineFontTakesCodeColour) {
    m_runIndex = 1;
    const RunPresentation shown = presentFirstRun("# a `x`");
    EXPECT_EQ(shown.font, (FontSpec{fontfamilies::serif(), 22}));
    EXPECT_EQ(shown.foreground, grey(10));
}

struct EmphasisCase {
    const char* input;
    bool bold;
    bool italic;
};

class EmphasisPresentation : public RunPresentationTest,
                             public ::testing::WithParamInterface<EmphasisCase> {};

// Bold and italic keep their line's family, size and colour, and add weight or slant.
TEST_P(EmphasisPresentation, AddsWeightOrSlantToTheLineFont) {
    const RunPresentation plain = presentFirstRun("plain");
    m_runIndex = 1;
    const RunPresentation shown = presentFirstRun(GetParam().input);
    EXPECT_EQ(shown.font.family, plain.font.family);
    EXPECT_EQ(shown.font.pointSize, plain.font.pointSize);
    EXPECT_EQ(shown.font.bold, GetParam().bold);
    EXPECT_EQ(shown.font.italic, GetParam().italic);
    EXPECT_EQ(shown.foreground, plain.foreground);
}

INSTANTIATE_TEST_SUITE_P(Table, EmphasisPresentation,
                         ::testing::Values(EmphasisCase{"plain **bold**", true, false},
                                           EmphasisCase{"plain __bold__", true, false},
                                           EmphasisCase{"plain *it*", false, true},
                                           EmphasisCase{"plain _it_", false, true}));

TEST_F(RunPresentationTest, LinkInBodyCarriesTargetAndLinkColour) {
    const RunPresentation shown = presentFirstRun("[note](target text)");
    EXPECT_EQ(shown.font, (FontSpec{fontfamilies::sans(), 14}));
    EXPECT_EQ(shown.foreground, grey(7));
    EXPECT_EQ(shown.link, "target text");
}

TEST(DefaultPresentation, LinkIsBlackByDefault) {
    MarkdownStyler styler("[a](b)");
    EXPECT_EQ(styler.presentation(styler.attributedString()[0]).foreground, (Color{0, 0, 0, 1}));
}

} // namespace
} // namespace quillery
