#include "markdown/TagPair.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

struct MarkerRunCase {
    std::string run;
    std::string found;
    std::string escaped;

    friend void PrintTo(const MarkerRunCase& c, std::ostream* out) {
        *out << '"' << c.run << "\" -> \"" << c.found << "\" + escaped \"" << c.escaped << '"';
    }
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

} // namespace
} // namespace quillery
