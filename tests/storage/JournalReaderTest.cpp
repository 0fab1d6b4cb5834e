#include "storage/JournalReader.h"

#include "base/Diagnostics.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillery {
namespace {

constexpr const char* kStamp = "2017-03-04T09:15:02GMT";

std::string journalWith(const std::string& diffs) {
    return R"({"schema": "1.0", "version": 1, "client": "C", "last_modified": ")" +
           std::string(kStamp) + R"(", "diffs": )" + diffs + "}";
}

std::string record(const std::string& extra = "") {
    return R"({"timestamp": ")" + std::string(kStamp) + R"(", "identifier": "N1")" + extra + "}";
}

struct ReadFailure {
    const char* name;
    std::string bytes;
    const char* domain;
    long code;
    const char* messagePart;
    bool writesBadDiff;
};

void PrintTo(const ReadFailure& failure, std::ostream* out) {
    *out << failure.name;
}

class JournalReadFailureTest : public ::testing::TestWithParam<ReadFailure> {};

TEST_P(JournalReadFailureTest, FailsWithDomainCodeAndJournalName) {
    const ReadFailure& failure = GetParam();
    std::vector<std::string> lines;
    diagnostics::ScopedSink sink([&](std::string_view line) { lines.emplace_back(line); });
    std::vector<DocumentDiff> diffs;

    auto error = JournalReader().read(failure.bytes, "C.journal", diffs);

    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain, failure.domain);
    EXPECT_EQ(error->code, failure.code);
    EXPECT_NE(error->message.find("“C.journal”"), std::string::npos) << error->message;
    EXPECT_NE(error->message.find(failure.messagePart), std::string::npos) << error->message;
    EXPECT_EQ(lines, failure.writesBadDiff ? std::vector<std::string>{"Bad diff."}
                                           : std::vector<std::string>{});
    EXPECT_TRUE(diffs.empty());
}

const char* const kJson = "NSCocoaErrorDomain";
const char* const kOSStatus = "NSOSStatusErrorDomain";

INSTANTIATE_TEST_SUITE_P(
    Journals, JournalReadFailureTest,
    ::testing::Values(
        ReadFailure{"TrailingText", journalWith("[]") + " x", kJson, 3840, "not valid JSON", false},
        ReadFailure{"TwoObjects", journalWith("[]") + " {}", kJson, 3840, "not valid JSON", false},
        ReadFailure{"BadValueInUnknownKey", journalWith("[" + record(R"(, "x": [1 2])") + "]"),
                    kJson, 3840, "not valid JSON", false},
        ReadFailure{"BadValueInHeader", R"({"version": tru, "diffs": []})", kJson, 3840,
                    "not valid JSON", false},
        ReadFailure{"InvalidUtf8", journalWith("[" + record(", \"text\": \"\xC3\x28\"") + "]"),
                    kJson, 3840, "not valid JSON", false},
        // A text taken straight from the input is still followed by a check of what comes next.
        ReadFailure{"ColonAfterText", journalWith("[" + record(R"(, "a": "b" : "c")") + "]"), kJson,
                    3840, "not valid JSON", false},
        ReadFailure{"TopLevelArray", "[]", kOSStatus, -4, "top level", false},
        ReadFailure{"NoDiffs", R"({"schema": "1.0"})", kOSStatus, -4, "no \"diffs\"", false},
        ReadFailure{"DiffsNotList", journalWith("{}"), kOSStatus, -4, "not a list", false},
        ReadFailure{"NumberInsteadOfRecord", journalWith("[" + record() + ", 7]"), kOSStatus, -4,
                    "element 2", false},
        ReadFailure{"NoIdentifier", journalWith(R"([{"timestamp": "2017-03-04T09:15:02GMT"}])"),
                    kOSStatus, -4, "record 1", true},
        ReadFailure{"IdentifierNotText",
                    journalWith(R"([{"timestamp": "2017-03-04T09:15:02GMT", "identifier": 4}])"),
                    kOSStatus, -4, "record 1", true},
        ReadFailure{"StampIsNumber", journalWith(R"([{"timestamp": 5, "identifier": "N"}])"),
                    kOSStatus, -4, "record 1", true},
        ReadFailure{"BadRecordAmongGood",
                    journalWith("[" + record() + R"(, {"identifier": "N2"}, )" + record() + "]"),
                    kOSStatus, -4, "record 2", true},
        // The shape of the whole list is checked before any record is judged.
        ReadFailure{"BadRecordThenNumber", journalWith(R"([{"identifier": "N2"}, 3])"), kOSStatus,
                    -4, "element 2", false}),
    [](const auto& test) { return std::string(test.param.name); });

// A journal that reads, and the identifier and payload of each record it holds.
struct ReadCase {
    const char* name;
    std::string bytes;
    std::vector<std::pair<const char*, PlainDictionary>> records;
};

class JournalReadTest : public ::testing::TestWithParam<ReadCase> {};

TEST_P(JournalReadTest, KeepsEveryOtherKeyOfARecordAsItsPayload) {
    JournalReader reader;
    std::vector<DocumentDiff> diffs;
    {
        // The reader is used for every journal of an open, bad ones among them.
        diagnostics::ScopedSink quiet([](std::string_view) {});
        ASSERT_TRUE(reader.read(std::string("{"), "C.journal", diffs));
    }
    auto error = reader.read(GetParam().bytes, "C.journal", diffs);
    ASSERT_FALSE(error) << error->message;
    ASSERT_EQ(diffs.size(), GetParam().records.size());
    for (std::size_t i = 0; i < diffs.size(); ++i) {
        EXPECT_EQ(diffs[i].identifier, GetParam().records[i].first);
        EXPECT_EQ(diffs[i].timestamp, DateFromString(kStamp));
        EXPECT_EQ(diffs[i].payload, GetParam().records[i].second);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Journals, JournalReadTest,
    ::testing::Values(
        ReadCase{"NoRecords", journalWith("[]"), {}},
        ReadCase{"OnlyStampAndIdentifier", journalWith("[" + record() + "]"), {{"N1", {}}}},
        ReadCase{
            "EveryOtherKey",
            journalWith(
                "[" +
                record(
                    R"(, "text": "a\n\"b\"", "destroy": true, "n": 1.50, "list": [1, {"k": null}])") +
                "]"),
            {{"N1",
              {{"text", "a\n\"b\""},
               {"destroy", true},
               {"n", RawJson{"1.50"}},
               {"list", RawJson{R"([1, {"k": null}])"}}}}}},
        ReadCase{"KeysOutsideDiffsAreNotExamined",
                 R"({"diffs": [], "schema": 9, "version": "x", "extra": {"a": [true]}})",
                 {}},
        ReadCase{
            "EscapedKeysAndTexts",
            journalWith(
                R"([{"time\u0073tamp": "2017-03-04T09:15:02GMT", "identifier": "N\u00e9", "t\u0065xt": "\ud83d\ude00"}])"),
            {{"N\xC3\xA9", {{"text", "\xF0\x9F\x98\x80"}}}}}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace quillery
