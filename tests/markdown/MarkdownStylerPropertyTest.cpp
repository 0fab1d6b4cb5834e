#include "markdown/MarkdownStyler.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace quillery {
namespace {

// The line terminators `text` styles to: one a line (the generator splits lines at "\n" only),
// except that a line holding "=" or "-" alone, spaces aside, is taken in by the kept line above.
std::size_t keptLines(std::string_view text) {
    std::size_t kept = 0;
    bool previousKept = false;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string_view line = text.substr(start, end - start);
        const std::size_t first = line.find_first_not_of(' ');
        const bool underline =
            first != std::string_view::npos && (line[first] == '=' || line[first] == '-') &&
            line.find_first_not_of(std::string{' ', line[first]}) == std::string_view::npos;
        previousKept = !(previousKept && underline);
        kept += previousKept;
        start = end + 1;
    }
    return kept;
}

TEST(StylingProperties, RandomMarkupAlwaysGivesOneTerminatorPerKeptLine) {
    static constexpr std::string_view alphabet = "*_`[\\]()#=- \nab";
    std::mt19937_64 random(0x9E3779B97F4A7C15ull);
    for (int i = 0; i < 20'000; ++i) {
        std::string input(random() % 80, ' ');
        for (char& c : input)
            c = alphabet[random() % alphabet.size()];
        SCOPED_TRACE(::testing::Message() << "input: «" << input << "»");
        const std::vector<StyledRun> runs = MarkdownStyler(input).attributedString();

        ASSERT_FALSE(runs.empty());
        EXPECT_TRUE(runs.back().isLineTerminator);
        std::size_t terminators = 0;
        for (const StyledRun& run : runs) {
            if (run.isLineTerminator) {
                ++terminators;
                EXPECT_EQ(run.text, "\n");
            } else {
                EXPECT_FALSE(run.text.empty());
                EXPECT_EQ(run.text.find('\n'), std::string::npos);
                EXPECT_TRUE(!run.link || run.style == LineStyle::link);
            }
        }
        EXPECT_EQ(terminators, keptLines(input));
    }
}

} // namespace
} // namespace quillery
