#include "document/TextFolding.h"

#include <gtest/gtest.h>

namespace quillery::folding {
namespace {

// A note's text, a query, and whether every word of the query occurs in the folded text.
struct MatchCase {
    const char* name;
    std::string_view text;
    std::string_view query;
    bool matches;
};

bool matches(std::string_view text, std::string_view query) {
    const std::vector<std::string> words = queryWords(query);
    const std::string folded = fold(text);
    if (words.empty())
        return false;
    for (const std::string& word : words)
        if (folded.find(word) == std::string::npos)
            return false;
    return true;
}

class FoldingMatchTest : public ::testing::TestWithParam<MatchCase> {};

TEST_P(FoldingMatchTest, MatchesAsAUserExpects) {
    EXPECT_EQ(matches(GetParam().text, GetParam().query), GetParam().matches);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FoldingMatchTest,
    ::testing::Values(MatchCase{"AccentsInText", "Résumé", "resume", true},
                      MatchCase{"AccentsInQuery", "resume", "RÉSUMÉ", true},
                      MatchCase{"DecomposedAccents", "Re\u0301sume\u0301", "résumé", true},
                      MatchCase{"SharpSInText", "Straße", "STRASSE", true},
                      MatchCase{"GreekFinalSigma", "ΟΔΟΣ", "οδός", true},
                      MatchCase{"DottedCapitalI", "İSTANBUL", "istanbul", true},
                      MatchCase{"DotlessIIsItsOwnLetter", "kapı", "kapi", false},
                      MatchCase{"DotlessIFindsItself", "KAPı", "kapı", true},
                      MatchCase{"Cjk", "東京タワーへ行く", "タワー 東京", true},
                      MatchCase{"Emoji", "Party 🎉 tonight", "🎉", true},
                      MatchCase{"WordsInAnyOrder", "naïve café owner", "owner CAFE naive", true},
                      MatchCase{"EveryWordNeeded", "café", "cafe bar", false},
                      MatchCase{"SubstringOfAWord", "Groceries", "cer", true},
                      MatchCase{"WordsAcrossLinesNeverJoin", "ab\ncd", "bc", false},
                      MatchCase{"UnicodeSpaceSplitsWords", "tea and cake", "cake\u3000tea", true},
                      MatchCase{"EmptyQuery", "anything", "", false},
                      MatchCase{"SpacesOnly", "anything", "  \t ", false},
                      MatchCase{"BrokenUtf8ReadsAsReplacement",
                                "a\xff"
                                "b",
                                "a\uFFFDb", true}),
    [](const auto& param) { return std::string(param.param.name); });

// A text, the words, and the byte ranges of the original text they cover.
struct RangeCase {
    const char* name;
    std::string_view text;
    std::vector<std::string> words;
    std::vector<ByteRange> ranges;
};

class MatchRangeTest : public ::testing::TestWithParam<RangeCase> {};

TEST_P(MatchRangeTest, CoversWholeCharactersOfTheOriginal) {
    EXPECT_EQ(matchRanges(GetParam().text, GetParam().words), GetParam().ranges);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, MatchRangeTest,
    ::testing::Values(
        RangeCase{"AccentedTwice", "Résumé and resume", {"resume"}, {{0, 8}, {13, 19}}},
        RangeCase{"HalfOfAnExpansion", "Straße", {"s"}, {{0, 1}, {4, 6}}},
        RangeCase{"TrailingMark", "Cafe\u0301 au lait", {"cafe"}, {{0, 6}}},
        RangeCase{"OverlappingWordsMerge", "abcdef", {"abc", "cde"}, {{0, 5}}},
        RangeCase{"NoMatch", "abc", {"x"}, {}}),
    [](const auto& param) { return std::string(param.param.name); });

} // namespace
} // namespace quillery::folding
