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

TEST(JsonWriterTest, EscapesWhatJsonRequiresAndKeepsUtf8) {
    std::string out;
    JsonWriter(out).string("q\" b\\ n\n t\t c\x01 \xC3\xA9 \xF0\x9F\x98\x80 /");
    EXPECT_EQ(out, "\"q\\\" b\\\\ n\\n t\\t c\\u0001 \xC3\xA9 \xF0\x9F\x98\x80 /\"");
}

TEST(JsonWriterTest, UuidTextsAreWrittenAsText) {
    std::string out;
    JsonWriter(out).value(PlainValue("AAAAAAAA-0000-4000-8000-000000000001"));
    EXPECT_EQ(out, "\"AAAAAAAA-0000-4000-8000-000000000001\"");
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
                           "\xE2\x80\xA8 \xF4\x8F\xBF\xBF"};
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
