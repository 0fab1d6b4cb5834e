#pragma once

#include <string>
#include <string_view>

namespace quillery::terminal_text {

// Text from a notebook or a file name made safe to show on a terminal: every control character
// but line feed and tab (C0, DEL, and the C1 controls U+0080 to U+009F) is written as a visible
// escape "\x1b" (the C1 controls as their two UTF-8 bytes, "\xc2\x9b"), so that note texts cannot
// move the cursor, retitle the window or write the clipboard. Everything else is kept byte for
// byte.
void appendShown(std::string& out, std::string_view text);
std::string shown(std::string_view text);

} // namespace quillery::terminal_text
