#include "model/JournalMerge.h"

#include "JournalGenerator.h"
#include "model/PlainDictionaryPrinter.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace quillery {
namespace {

using namespace std::chrono;

const TimePoint kStamp = sys_days{year{2017} / 3 / 4} + hours{9} + minutes{15} + seconds{2};

std::vector<std::string> namesOf(const std::vector<DocumentDiff>& diffs) {
    std::vector<std::string> names;
    for (const auto& diff : diffs)
        names.push_back(diff.identifier.toString());
    return names;
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

// Journals from the generator, `perSecond` records to a second handed round in turns of `turn`,
// so records of one second lie in several journals; `shuffled` puts one journal out of order.
struct MergeCase {
    std::size_t journals;
    std::size_t perSecond;
    std::size_t turn;
    bool shuffled;
};

class OnePassMerge : public testing::TestWithParam<MergeCase> {};

TEST_P(OnePassMerge, GivesTheListOfAStableSortByTime) {
    const MergeCase& c = GetParam();
    auto journals = testing_support::JournalGenerator(7, testing_support::kEveryChange)
                        .generate(3000, c.journals, kStamp, c.perSecond, c.turn);
    journals.emplace_back(); // a journal without records
    if (c.shuffled)
        std::reverse(journals[1].begin(), journals[1].end());
    std::vector<DocumentDiff> expected;
    for (const auto& journal : journals)
        expected.insert(expected.end(), journal.begin(), journal.end());
    std::stable_sort(expected.begin(), expected.end(),
                     [](const auto& a, const auto& b) { return a.timestamp < b.timestamp; });
    const std::vector<DocumentDiff> merged = MergedDiffsFromArrayOfDiffs(journals);
    ASSERT_EQ(merged.size(), expected.size());
    for (std::size_t i = 0; i < merged.size(); ++i) {
        ASSERT_EQ(merged[i].identifier, expected[i].identifier) << "record " << i;
        ASSERT_EQ(merged[i].payload, expected[i].payload) << "record " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Journals, OnePassMerge,
                         testing::Values(MergeCase{3, 16, 3, false}, MergeCase{5, 7, 2, false},
                                         MergeCase{4, 64, 1, false}, MergeCase{3, 16, 3, true},
                                         MergeCase{300, 40, 1, false}));

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
