#include "markdown/MarkdownStyler.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace quillery {
namespace {

// Lines of `text` (split at "\n" only, which is the only newline the generator makes) that an
// underline rule does not consume: a line is consumed when the line before it was kept and this
// line holds "=" or "-" alone, spaces aside.
bool isUnderline(std::string_view line) {
    const std::size_t first = line.find_first_not_of(' ');
    return first != std::string_view::npos && (line[first] == '=' || line[first] == '-') &&
           line.find_first_not_of(std::string{' ', line[first]}) == std::string_view::npos;
}

std::size_t keptLines(std::string_view text) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find('\n', start)) != std::string_view::npos;
         start = end + 1) {
        lines.push_back(text.substr(start, end - start));
    }
    lines.push_back(text.substr(start));

    std::size_t kept = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        ++kept;
        if (i + 1 < lines.size() && isUnderline(lines[i + 1])) {
            ++i;
        }
    }
    return kept;
}

class RandomMarkup {
public:
    explicit RandomMarkup(std::uint64_t seed)
        : m_state(seed) {}

    std::string next() {
        static constexpr std::string_view alphabet = "*_`[\\]()#=- \nab";
        std::string text;
        const std::size_t length = below(80);
        for (std::size_t i = 0; i < length; ++i) {
            text += alphabet[below(alphabet.size())];
        }
        return text;
    }

private:
    std::size_t below(std::size_t bound) {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 7;
        m_state ^= m_state << 17;
        return static_cast<std::size_t>(m_state % bound);
    }

    std::uint64_t m_state;
};

TEST(StylingProperties, RandomMarkupAlwaysGivesOneTerminatorPerKeptLine) {
    RandomMarkup generator(0x9E3779B97F4A7C15ull);
    for (int i = 0; i < 20'000; ++i) {
        const std::string input = generator.next();
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
