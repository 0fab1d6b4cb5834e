#include "CliFixture.h"

#include <simdjson.h>

namespace quillery::cli {
namespace {

class StyleCommand : public CliFixture {};

TEST_F(StyleCommand, PrintsOneElementPerRunInOrderAndNamesEveryLineTypeAndStyle) {
    const Outcome result = run({"style"}, false, "# Title\nsee [a](b) *it*");
    EXPECT_EQ(result.exitCode, kSuccess);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, R"([
  {"text": "Title", "line": "h1", "style": "none"},
  {"newline": true},
  {"text": "see ", "line": "body", "style": "none"},
  {"text": "a", "line": "body", "style": "link", "link": "b"},
  {"text": " ", "line": "body", "style": "none"},
  {"text": "it", "line": "body", "style": "italic"},
  {"newline": true}
]
)");
    const std::string out =
        run({"style"}, false, "## a\n### b\n#### c\n##### d\n###### e\n**f** `g`\n- i").out;
    for (const char* name :
         {"\"h2\"", "\"h3\"", "\"h4\"", "\"h5\"", "\"h6\"", "\"bold\"", "\"code\"", "\"list\""})
        EXPECT_NE(out.find(name), std::string::npos) << name;
}

// Each input is styled, printed, read back with a JSON parser, and its run texts compared with
// what they must hold.
struct EscapingCase {
    const char* name;
    std::string input;
    std::vector<std::string> texts; // the text or link of each element that has one, in order

    friend void PrintTo(const EscapingCase& c, std::ostream* out) { *out << c.name; }
};

class StyleCommandEscaping : public CliFixture,
                             public ::testing::WithParamInterface<EscapingCase> {};

TEST_P(StyleCommandEscaping, OutputIsValidJsonWithExactTexts) {
    const Outcome result = run({"style"}, false, GetParam().input);
    ASSERT_EQ(result.exitCode, kSuccess);
    simdjson::dom::parser parser;
    simdjson::dom::array elements;
    ASSERT_EQ(parser.parse(result.out).get_array().get(elements), simdjson::SUCCESS) << result.out;
    std::vector<std::string> texts;
    for (simdjson::dom::element element : elements)
        for (const char* key : {"text", "link"})
            if (std::string_view value; element[key].get_string().get(value) == simdjson::SUCCESS)
                texts.emplace_back(value);
    EXPECT_EQ(texts, GetParam().texts);
}

INSTANTIATE_TEST_SUITE_P(
    Strings, StyleCommandEscaping,
    ::testing::Values(EscapingCase{"Quotes", "say \"hi\"", {"say \"hi\""}},
                      EscapingCase{"BackslashInLink", "[C:\\dir](x\\y)", {"C:\\dir", "x\\y"}},
                      EscapingCase{"TabInCodeSpan", "`a\tb`", {"a\tb"}},
                      EscapingCase{"ControlCharacters",
                                   "a\x01\x1f\x7f"
                                   "b\bc",
                                   {"a\x01\x1f\x7f"
                                    "b\bc"}},
                      EscapingCase{"NonAscii", "« — 😀 »", {"« — 😀 »"}},
                      EscapingCase{"InvalidUtf8ReadsAsReplacement", "a\xC3(", {"a\uFFFD("}},
                      EscapingCase{"Nul", std::string("a\0b", 3), {std::string("a\0b", 3)}}),
    [](const auto& escaping) { return std::string(escaping.param.name); });

} // namespace
} // namespace quillery::cli
