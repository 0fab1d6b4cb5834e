#include "markdown/TagPair.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

struct MarkerRunCase {
    std::string run;
    std::string found;
    std::string escaped;
};

class MarkerRunSplitting : public ::testing::TestWithParam<MarkerRunCase> {};

TEST_P(MarkerRunSplitting, SeparatesMarkersFromEscapes) {
    const TagPair tag = TagPair::fromMarkerRun(GetParam().run);
    EXPECT_EQ(tag.foundCharacters, GetParam().found);
    EXPECT_EQ(tag.escapedCharacters, GetParam().escaped);
}

INSTANTIATE_TEST_SUITE_P(
    Escapes, MarkerRunSplitting,
    ::testing::Values(MarkerRunCase{"**", "**", ""}, MarkerRunCase{"\\*", "", "*"},
                      MarkerRunCase{"\\**", "*", "*"}, MarkerRunCase{"*\\_*", "**", "_"},
                      MarkerRunCase{"\\\\", "", ""}, MarkerRunCase{"\\", "\\", ""},
                      MarkerRunCase{"", "", ""}, MarkerRunCase{"\\\\\\*", "", "*"},
                      // A backslash with nothing after it stays a marker.
                      MarkerRunCase{"*\\", "*\\", ""}, MarkerRunCase{"\\*\\", "\\", "*"},
                      MarkerRunCase{"\\\\\\", "\\", ""}));

struct StyleNameCase {
    std::string markers;
    LineStyle style;
};

class MarkerRunStyle : public ::testing::TestWithParam<StyleNameCase> {};

TEST_P(MarkerRunStyle, ClassifiesTheWholeRun) {
    EXPECT_EQ(styleFromString(GetParam().markers), GetParam().style);
}

INSTANTIATE_TEST_SUITE_P(
    Table, MarkerRunStyle,
    ::testing::Values(StyleNameCase{"**", LineStyle::bold}, StyleNameCase{"__", LineStyle::bold},
                      StyleNameCase{"*", LineStyle::italic}, StyleNameCase{"_", LineStyle::italic},
                      StyleNameCase{"`", LineStyle::code}, StyleNameCase{"[", LineStyle::link},
                      StyleNameCase{"", LineStyle::none}, StyleNameCase{"***", LineStyle::none},
                      StyleNameCase{"**_", LineStyle::none}, StyleNameCase{"\\", LineStyle::none},
                      StyleNameCase{"``", LineStyle::none}, StyleNameCase{"[[", LineStyle::none}));

} // namespace
} // namespace quillery
