#include "CliFixture.h"

namespace quillery::cli {
namespace {

class StyleCommand : public CliFixture {};

TEST_F(StyleCommand, PrintsOneElementPerRunInOrder) {
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
}

} // namespace
} // namespace quillery::cli
