#include "storage/JsonWriter.h"

#include "storage/JournalReader.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

TEST(JsonWriterTest, PrettyPrintsOneEntryPerLine) {
    std::string out;
    JsonWriter json(out);
    json.beginObject();
    json.key("schema");
    json.string("1.0");
    json.key("version");
    json.integer(2);
    json.key("empty");
    json.beginArray();
    json.endArray();
    json.key("diffs");
    json.beginArray();
    json.dictionary(PlainDictionary{{"a", true}, {"b", RawJson{"[1,2]"}}});
    json.integer(-7);
    json.endArray();
    json.endObject();

    EXPECT_EQ(out, "{\n"
                   "  \"schema\" : \"1.0\",\n"
                   "  \"version\" : 2,\n"
                   "  \"empty\" : [],\n"
                   "  \"diffs\" : [\n"
                   "    {\n"
                   "      \"a\" : true,\n"
                   "      \"b\" : [1,2]\n"
                   "    },\n"
                   "    -7\n"
                   "  ]\n"
                   "}");
}

// Line breaks come from a table of indentations; a nesting deeper than it still indents.
TEST(JsonWriterTest, IndentsEveryLevelOfADeepNesting) {
    constexpr int kDepth = 40;
    std::string out;
    JsonWriter json(out);
    std::string expected;
    for (int level = 0; level < kDepth; ++level) {
        json.beginArray();
        json.integer(level);
        expected += (level == 0 ? "" : ",\n" + std::string(2 * level, ' ')) + "[\n" +
                    std::string(2 * (level + 1), ' ') + std::to_string(level);
    }
    for (int level = kDepth - 1; level >= 0; --level) {
        json.endArray();
        expected += "\n" + std::string(2 * level, ' ') + "]";
    }
    EXPECT_EQ(out, expected);
}

// Texts are scanned eight bytes at a time: a byte to escape must be found wherever it falls in
// or after a word, and the bytes next to the escaping boundaries must not be.
TEST(JsonWriterTest, FindsEachByteToEscapeAtEveryPosition) {
    const std::vector<std::pair<std::string, std::string>> specials = {
        {"\"", "\\\""}, {"\\", "\\\\"},      {"\n", "\\n"},       {std::string(1, '\0'), "\\u0000"},
        {"\t", "\\t"},  {"\x01", "\\u0001"}, {"\x1F", "\\u001f"}, {"\xC3\xA9", "\xC3\xA9"},
        {"\x20", " "},  {"\x7F", "\x7F"},    {"!", "!"},          {"#", "#"},
        {"[", "["},     {"]", "]"}};
    for (std::size_t length : {1u, 7u, 8u, 9u, 16u, 17u}) {
        for (std::size_t at = 0; at < length; ++at) {
            for (const auto& [raw, escaped] : specials) {
                const std::string before(at, 'a');
                const std::string after(length - at - 1, 'b');
                std::string out;
                JsonWriter(out).string(before + raw + after);
                EXPECT_EQ(out, "\"" + before + escaped + after + "\"") << length << " " << at;
            }
        }
    }
}

TEST(JsonWriterTest, InvalidUtf8IsReportedAndReplaced) {
    std::string out;
    JsonWriter json(out);
    json.string("a\xC3(b\xFF");
    EXPECT_TRUE(json.sawInvalidText());
    EXPECT_EQ(out, "\"a\xEF\xBF\xBD(b\xEF\xBF\xBD\"");
}

TEST(JsonWriterTest, EveryTextComesBackThroughTheReader) {
    std::string texts[] = {"",
                           "plain",
                           "\"quoted\"",
                           "back\\slash",
                           "line\nbreak\r\n",
                           std::string("nul\0inside", 10),
                           "\x1F\x7F",
                           "\xE2\x80\xA8 \xF4\x8F\xBF\xBF",
                           "AAAAAAAA-0000-4000-8000-000000000001"};
    for (const std::string& text : texts) {
        std::string out;
        JsonWriter json(out);
        json.beginObject();
        json.key("diffs");
        json.beginArray();
        json.dictionary(PlainDictionary{
            {"timestamp", "2017-03-04T09:15:02GMT"}, {"identifier", "N"}, {text, text}});
        json.endArray();
        json.endObject();

        std::vector<DocumentDiff> diffs;
        auto error = JournalReader().read(out, "t.journal", diffs);
        ASSERT_FALSE(error) << error->message << "\n" << out;
        ASSERT_EQ(diffs.size(), 1u);
        EXPECT_EQ(diffs[0].payload, (PlainDictionary{{text, text}})) << out;
    }
}

} // namespace
} // namespace quillery
