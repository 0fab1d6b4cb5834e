#include "storage/JournalWriter.h"

#include <chrono>
#include <gtest/gtest.h>
#include <simdjson.h>

namespace quillery {
namespace {

class StringFile : public WritableFile {
public:
    std::error_code append(std::string_view bytes) override {
        text.append(bytes);
        return {};
    }
    std::error_code sync() override { return {}; }
    std::error_code close() override { return {}; }
    std::string text;
};

TEST(JournalWriterTest, StampsMatchTheDateFormatterAcrossSecondsAndDays) {
    using namespace std::chrono;
    TimePoint start = sys_days{2016y / December / 31} + 22h + 59min + 58s + 700ms;
    std::vector<DocumentDiff> diffs;
    for (int i = 0; i < 200; ++i)
        diffs.emplace_back(start + seconds(i * i * 37) + milliseconds(i * 13), Identifier("N"),
                           PlainDictionary{});
    StringFile file;
    ASSERT_TRUE(JournalWriter().write(file, Identifier("C"), start, diffs));

    simdjson::dom::parser parser;
    simdjson::dom::element journal = parser.parse(file.text);
    EXPECT_EQ(int64_t(journal["version"]), 200);
    EXPECT_EQ(std::string_view(journal["last_modified"]), StringFromDate(start));
    std::size_t i = 0;
    for (simdjson::dom::element record : journal["diffs"])
        EXPECT_EQ(std::string_view(record["timestamp"]), StringFromDate(diffs[i++].timestamp));
    EXPECT_EQ(i, diffs.size());
}

TEST(JournalWriterTest, PayloadStampAndIdentifierWinOverTheRecords) {
    std::vector<DocumentDiff> diffs{
        DocumentDiff(TimePoint{}, Identifier("N"),
                     PlainDictionary{{"identifier", "M"}, {"text", "t"}, {"timestamp", "x"}})};
    StringFile file;
    ASSERT_TRUE(JournalWriter().write(file, Identifier("C"), TimePoint{}, diffs));
    EXPECT_NE(file.text.find("{\n      \"timestamp\" : \"x\",\n      \"identifier\" : \"M\",\n"
                             "      \"text\" : \"t\"\n    }"),
              std::string::npos)
        << file.text;
}

std::vector<DocumentDiff> mixedRecords(std::size_t count) {
    using namespace std::chrono;
    const TimePoint start = sys_days{2019y / March / 4} + 23h + 59min;
    std::vector<DocumentDiff> diffs;
    for (std::size_t i = 0; i < count; ++i) {
        PlainDictionary payload{{"text", "note " + std::to_string(i) + (i % 7 ? "" : " \"q\"")}};
        if (i % 3 == 0)
            payload.set("parent", "root");
        if (i % 11 == 0)
            payload.set("timestamp", "own");
        diffs.emplace_back(start + seconds(i * 13), Identifier("N" + std::to_string(i)),
                           std::move(payload));
    }
    return diffs;
}

// Blocks of records are formatted apart and joined; the journal must read the same whatever
// the blocks, including blocks of one record, a last short block and a single block.
TEST(JournalWriterTest, BlocksJoinIntoTheSameJournal) {
    const auto diffs = mixedRecords(301);
    StringFile whole;
    ASSERT_TRUE(JournalWriter(1000).write(whole, Identifier("C"), TimePoint{}, diffs));
    for (std::size_t perBlock : {1u, 2u, 7u, 300u, 301u}) {
        StringFile blocks;
        ASSERT_TRUE(JournalWriter(perBlock).write(blocks, Identifier("C"), TimePoint{}, diffs));
        EXPECT_EQ(blocks.text, whole.text) << perBlock;
    }
    simdjson::dom::parser parser;
    simdjson::dom::element journal = parser.parse(whole.text);
    EXPECT_EQ(simdjson::dom::array(journal["diffs"]).size(), diffs.size());
    StringFile empty;
    ASSERT_TRUE(JournalWriter(1).write(empty, Identifier("C"), TimePoint{}, {}));
    EXPECT_TRUE(empty.text.ends_with("\"diffs\" : []\n}\n")) << empty.text;
}

// A file that fills up at the n-th write: the writer stops there, with the blocks in hand.
TEST(JournalWriterTest, AFileErrorStopsTheWrite) {
    class FillingFile : public StringFile {
    public:
        explicit FillingFile(int writes)
            : m_writes(writes) {}
        std::error_code append(std::string_view bytes) override {
            if (--m_writes < 0)
                return std::make_error_code(std::errc::no_space_on_device);
            return StringFile::append(bytes);
        }

    private:
        int m_writes;
    };
    for (int writes : {0, 3}) {
        FillingFile file(writes);
        auto result = JournalWriter(5).write(file, Identifier("C"), TimePoint{}, mixedRecords(500));
        EXPECT_EQ(result.fileError, std::errc::no_space_on_device) << writes;
        EXPECT_FALSE(result.invalidText);
    }
}

} // namespace
} // namespace quillery
