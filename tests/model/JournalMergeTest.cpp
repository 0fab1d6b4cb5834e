#include "model/JournalMerge.h"

#include "model/PlainDictionaryPrinter.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

using namespace std::chrono;

const TimePoint kStamp = sys_days{year{2017} / 3 / 4} + hours{9} + minutes{15} + seconds{2};

TEST(JournalMerge, EmptyInputsGiveAnEmptyList) {
    EXPECT_TRUE(MergedDiffsFromArrayOfDiffs({}).empty());
    EXPECT_TRUE(MergedDiffsFromArrayOfDiffs({{}, {}}).empty());
}

std::vector<std::string> namesOf(const std::vector<DocumentDiff>& diffs) {
    std::vector<std::string> names;
    for (const auto& diff : diffs)
        names.push_back(diff.identifier.toString());
    return names;
}

TEST(JournalMerge, InterleavesJournalsByTime) {
    auto at = [](int second, const char* name) {
        return DocumentDiff(kStamp + seconds{second}, Identifier(name), {});
    };
    auto merged = MergedDiffsFromArrayOfDiffs({{at(1, "a1"), at(3, "a3")}, {at(2, "b2")}});
    EXPECT_EQ(namesOf(merged), (std::vector<std::string>{"a1", "b2", "a3"}));
    auto sorted = MergedDiffsFromArrayOfDiffs({{at(5, "late"), at(0, "early")}});
    EXPECT_EQ(namesOf(sorted), (std::vector<std::string>{"early", "late"}));
}

TEST(JournalMerge, EqualStampsKeepJournalOrderAndDuplicatesSurvive) {
    auto at = [](int second, const char* name) {
        return DocumentDiff(kStamp + seconds{second}, Identifier(name), {});
    };
    std::vector<DocumentDiff> first;
    for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h"})
        first.push_back(at(1, name));
    auto merged = MergedDiffsFromArrayOfDiffs({first, {at(1, "x"), at(0, "y")}, {at(1, "a")}});
    EXPECT_EQ(namesOf(merged),
              (std::vector<std::string>{"y", "a", "b", "c", "d", "e", "f", "g", "h", "x", "a"}));
}

// Copies of one client's journal, written as "second:note=text" records.
struct UnionCase {
    const char* name;
    std::vector<std::vector<const char*>> copies;
    std::vector<const char*> expected;
};

class JournalUnion : public testing::TestWithParam<UnionCase> {};

TEST_P(JournalUnion, KeepsEachRecordAsOftenAsTheCopyThatHoldsItMost) {
    auto record = [](std::string_view text) {
        const int second = text[0] - '0';
        const std::size_t equals = text.find('=');
        return DocumentDiff(kStamp + seconds{second}, Identifier(text.substr(2, equals - 2)),
                            {{"text", std::string(text.substr(equals + 1))}});
    };
    std::vector<std::vector<DocumentDiff>> copies;
    for (const auto& copy : GetParam().copies) {
        copies.emplace_back();
        for (const char* text : copy)
            copies.back().push_back(record(text));
    }
    std::vector<std::string> got;
    for (const DocumentDiff& diff : UnionOfJournals(copies))
        got.push_back(
            std::to_string(std::chrono::duration_cast<seconds>(diff.timestamp - kStamp).count()) +
            ":" + diff.identifier.toString() + "=" + *diff.payload.find("text")->text());
    EXPECT_EQ(got,
              std::vector<std::string>(GetParam().expected.begin(), GetParam().expected.end()));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, JournalUnion,
    testing::Values(
        UnionCase{"IdenticalCopies", {{"1:a=x", "2:b=y"}, {"1:a=x", "2:b=y"}}, {"1:a=x", "2:b=y"}},
        UnionCase{"EachCopyAddsItsOwn",
                  {{"1:a=x", "3:a=z"}, {"1:a=x", "2:b=y"}},
                  {"1:a=x", "2:b=y", "3:a=z"}},
        UnionCase{"ARepeatWithinOneCopyStays",
                  {{"1:a=x", "1:a=y", "1:a=x"}, {"1:a=x", "1:a=y"}},
                  {"1:a=x", "1:a=y", "1:a=x"}},
        UnionCase{"SameNoteOtherText", {{"1:a=x"}, {"1:a=y"}}, {"1:a=x", "1:a=y"}}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

} // namespace
} // namespace quillery
