#include "markdown/Styles.h"

#include "markdown/MarkdownStyler.h"

#include <gtest/gtest.h>
#include <string>

namespace quillery {
namespace {

TEST(Color, FromHueSaturationAndBrightnessTakesTheHueRoundTheWheel) {
    struct Case {
        double hue, saturation, brightness;
        Color expected;
    };
    const Case cases[] = {{0.2, 0.7, 0.5, {0.43, 0.5, 0.15, 1}},
                          {0.24, 0.8, 0.5, {0.324, 0.5, 0.1, 1}},
                          {0.024, 0.94, 0.8, {0.8, 0.156288, 0.048, 1}},
                          {0.5, 1, 1, {0, 1, 1, 1}},
                          {0.7, 1, 1, {0.2, 0, 1, 1}},
                          {1.0, 1, 1, {1, 0, 0, 1}},
                          {0.9, 0, 0.3, Color{0.3, 0.3, 0.3, 1}}};
    for (const Case& c : cases) {
        const Color color = Color::fromHsba(c.hue, c.saturation, c.brightness, 1);
        for (auto part : {&Color::red, &Color::green, &Color::blue, &Color::alpha})
            EXPECT_NEAR(color.*part, c.expected.*part, 0.0005) << "hue " << c.hue;
    }
}

// Every slot gets its own grey, so a test can tell which slot a run was coloured from.
class RunPresentationTest : public ::testing::Test {
protected:
    static Color grey(int step) { return {step / 10.0, step / 10.0, step / 10.0, 1.0}; }

    RunPresentation present(const std::string& text, std::size_t run = 0) {
        MarkdownStyler styler(text);
        BasicStyles* slots[] = {&styler.h1,   &styler.h2,     &styler.h3,   &styler.h4,
                                &styler.h5,   &styler.h6,     &styler.body, &styler.link,
                                &styler.bold, &styler.italic, &styler.code};
        int step = 0;
        for (BasicStyles* slot : slots)
            slot->color = grey(step++);
        return styler.presentation(styler.attributedString().at(run));
    }
};

// h2 and h3 share a font but not a colour slot.
TEST_F(RunPresentationTest, ALineTakesTheFontOfItsTextStyleAndTheColourOfItsSlot) {
    const RunPresentation shown = present("### x");
    EXPECT_EQ(shown.font, FontForTextStyle(MyFontTextStyle::title2));
    EXPECT_EQ(shown.foreground, grey(2));
    EXPECT_FALSE(shown.link);
}

// Bold and italic keep their line's family, size and colour, and add weight or slant.
TEST_F(RunPresentationTest, EmphasisAddsWeightOrSlantToTheLineFont) {
    const RunPresentation plain = present("plain");
    for (const auto& [input, bold, italic] :
         {std::tuple{"plain **bold**", true, false}, std::tuple{"plain __bold__", true, false},
          std::tuple{"plain *it*", false, true}, std::tuple{"plain _it_", false, true}}) {
        const RunPresentation shown = present(input, 1);
        EXPECT_EQ(shown.font.family, plain.font.family) << input;
        EXPECT_EQ(shown.font.pointSize, plain.font.pointSize) << input;
        EXPECT_EQ(shown.font.bold, bold) << input;
        EXPECT_EQ(shown.font.italic, italic) << input;
        EXPECT_EQ(shown.foreground, plain.foreground) << input;
    }
}

TEST_F(RunPresentationTest, CodeAndLinksKeepTheLineFontAndTakeTheirColour) {
    const RunPresentation code = present("# a `x`", 1);
    EXPECT_EQ(code.font, FontForTextStyle(MyFontTextStyle::title1));
    EXPECT_EQ(code.foreground, grey(10));
    const RunPresentation link = present("[note](target text)");
    EXPECT_EQ(link.font, FontForTextStyle(MyFontTextStyle::body));
    EXPECT_EQ(link.foreground, grey(7));
    EXPECT_EQ(link.link, "target text");
}

} // namespace
} // namespace quillery
