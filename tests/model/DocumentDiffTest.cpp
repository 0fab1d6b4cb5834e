#include "model/DocumentDiff.h"

#include "base/Diagnostics.h"
#include "model/JournalMerge.h"
#include "model/PlainDictionaryPrinter.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

using namespace std::chrono;

const TimePoint kStamp = sys_days{year{2017} / 3 / 4} + hours{9} + minutes{15} + seconds{2};

TEST(DocumentDiffForm, WritesStampIdentifierAndPayloadAtOneLevel) {
    const Identifier node = Identifier::makeRandom();
    DocumentDiff diff(kStamp + milliseconds{700}, node, {{"text", "hi"}, {"parent", "root"}});
    PlainDictionary written = diff.asPlainDictionary();
    EXPECT_EQ(written, (PlainDictionary{{"timestamp", "2017-03-04T09:15:02GMT"},
                                        {"identifier", node},
                                        {"text", "hi"},
                                        {"parent", "root"}}));
}

TEST(DocumentDiffForm, RoundTripDropsPayloadIdentifierAndFractionOfSecond) {
    const Identifier node = Identifier::makeRandom();
    DocumentDiff diff(kStamp + milliseconds{700}, node,
                      {{"identifier", node}, {"text", ""}, {"parent", "root"}});
    auto read = DocumentDiffFromJsonDictionary(diff.asPlainDictionary());
    ASSERT_TRUE(read);
    EXPECT_EQ(read->identifier, node);
    EXPECT_EQ(read->timestamp, kStamp);
    EXPECT_EQ(read->payload, (PlainDictionary{{"text", ""}, {"parent", "root"}}));
    EXPECT_TRUE(read->groupIdentifier.isEmpty());
}

TEST(DocumentDiffForm, PayloadIdentifierWinsWhenWritten) {
    DocumentDiff diff(kStamp, Identifier("one"), {{"identifier", "other"}});
    auto read = DocumentDiffFromJsonDictionary(diff.asPlainDictionary());
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->identifier == std::string_view("other"));
    EXPECT_TRUE(read->payload.empty());
}

TEST(DocumentDiffForm, KeepsUnknownKeysAndOddValuesForTheEngineToJudge) {
    auto read = DocumentDiffFromJsonDictionary({{"timestamp", "2017-03-04T09:15:02GMT"},
                                                {"identifier", "x"},
                                                {"color", RawJson{"[1,2]"}},
                                                {"destroy", "yes"}});
    ASSERT_TRUE(read);
    EXPECT_EQ(read->payload, (PlainDictionary{{"color", RawJson{"[1,2]"}}, {"destroy", "yes"}}));
}

class DiffListReading : public testing::Test {
protected:
    std::vector<std::string> m_lines;
    diagnostics::ScopedSink m_sink{[this](std::string_view line) {
        m_lines.emplace_back(line);
    }};
};

TEST_F(DiffListReading, EmptyListIsAnEmptyListNotAFailure) {
    auto diffs = DiffsFromPlainDiffs({});
    ASSERT_TRUE(diffs);
    EXPECT_TRUE(diffs->empty());
    EXPECT_TRUE(m_lines.empty());
}

TEST_F(DiffListReading, KeepsOrderOfGoodRecords) {
    auto diffs = DiffsFromPlainDiffs(
        {{{"timestamp", "2017-03-04T09:15:03GMT"}, {"identifier", "b"}},
         {{"timestamp", "2017-03-04T09:15:02GMT"}, {"identifier", "a"}, {"text", "x"}}});
    ASSERT_TRUE(diffs);
    ASSERT_EQ(diffs->size(), 2u);
    EXPECT_TRUE((*diffs)[0].identifier == std::string_view("b"));
    EXPECT_TRUE((*diffs)[0].payload.empty());
    EXPECT_EQ((*diffs)[1].payload, (PlainDictionary{{"text", "x"}}));
}

class BadRecordInList : public DiffListReading,
                        public testing::WithParamInterface<PlainDictionary> {};

TEST_P(BadRecordInList, RejectsTheWholeListWithOneLine) {
    PlainDictionary good{{"timestamp", "2017-03-04T09:15:02GMT"}, {"identifier", "a"}};
    EXPECT_FALSE(DiffsFromPlainDiffs({good, GetParam(), good}));
    EXPECT_EQ(m_lines, std::vector<std::string>{"Bad diff."});
}

INSTANTIATE_TEST_SUITE_P(
    DocumentDiffForm, BadRecordInList,
    testing::Values(PlainDictionary{{"timestamp", RawJson{"1488618902"}}, {"identifier", "a"}},
                    PlainDictionary{{"timestamp", "2017-03-04 09:15:02GMT"}, {"identifier", "a"}},
                    PlainDictionary{{"timestamp", "2017-03-04T09:15:02GMT"}},
                    PlainDictionary{{"timestamp", "2017-03-04T09:15:02GMT"},
                                    {"identifier", RawJson{"12"}}},
                    PlainDictionary{{"identifier", "a"}}));

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
