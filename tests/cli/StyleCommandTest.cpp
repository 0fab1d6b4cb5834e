#include "cli/StyleCommand.h"

#include <gtest/gtest.h>
#include <simdjson.h>
#include <sstream>
#include <string>
#include <vector>

namespace quillery::cli {
namespace {

struct CommandResult {
    int exitCode;
    std::string out;
    std::string err;
};

CommandResult runStyle(const std::string& input, const std::vector<std::string>& arguments = {}) {
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream err;
    const int exitCode = runStyleCommand(arguments, in, out, err);
    return {exitCode, out.str(), err.str()};
}

TEST(StyleCommandOutput, PrintsOneElementPerRunInOrder) {
    const CommandResult result = runStyle("# Title\nsee [a](b) *it*");
    EXPECT_EQ(result.exitCode, 0);
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
}

TEST(StyleCommandOutput, EmptyInputIsOneSpaceAndANewline) {
    EXPECT_EQ(runStyle("").out, R"([
  {"text": " ", "line": "body", "style": "none"},
  {"newline": true}
]
)");
}

TEST(StyleCommandOutput, NamesEveryLineTypeAndStyle) {
    const std::string out =
        runStyle("## a\n### b\n#### c\n##### d\n###### e\n**f** `g` _h_\n- i").out;
    for (const char* name : {"\"h2\"", "\"h3\"", "\"h4\"", "\"h5\"", "\"h6\"", "\"bold\"",
                             "\"code\"", "\"italic\"", "\"list\""}) {
        EXPECT_NE(out.find(name), std::string::npos) << name;
    }
}

// Each input is styled, printed, read back with a JSON parser, and its run texts compared with
// what they must hold.
struct EscapingCase {
    const char* name;
    std::string input;
    std::vector<std::string> texts; // the text or link of each element that has one, in order

    friend void PrintTo(const EscapingCase& c, std::ostream* out) { *out << c.name; }
};

class StyleCommandEscaping : public ::testing::TestWithParam<EscapingCase> {};

TEST_P(StyleCommandEscaping, OutputIsValidJsonWithExactTexts) {
    const CommandResult result = runStyle(GetParam().input);
    ASSERT_EQ(result.exitCode, 0);
    simdjson::dom::parser parser;
    simdjson::dom::element document;
    ASSERT_EQ(parser.parse(result.out).get(document), simdjson::SUCCESS) << result.out;
    simdjson::dom::array elements;
    ASSERT_EQ(document.get_array().get(elements), simdjson::SUCCESS);
    std::vector<std::string> texts;
    for (simdjson::dom::element element : elements) {
        for (const char* key : {"text", "link"}) {
            std::string_view value;
            if (element[key].get_string().get(value) == simdjson::SUCCESS) {
                texts.emplace_back(value);
            }
        }
    }
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
    [](const ::testing::TestParamInfo<EscapingCase>& escaping) {
        return std::string(escaping.param.name);
    });

TEST(StyleCommandArguments, HelpPrintsUsage) {
    for (const char* help : {"--help", "-h"}) {
        const CommandResult result = runStyle("ignored", {help});
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_NE(result.out.find("Usage: quillery-cli style"), std::string::npos);
        EXPECT_EQ(result.err, "");
    }
}

TEST(StyleCommandArguments, UnknownArgumentExitsWithTwo) {
    const CommandResult result = runStyle("text", {"--bogus"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("--bogus"), std::string::npos);
}

} // namespace
} // namespace quillery::cli
