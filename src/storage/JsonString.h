#pragma once

#include <string>
#include <string_view>

namespace quillery {

// Appends the text as a JSON string: in quotes, with the escapes JSON requires ('"', '\\', and
// control characters as \n, \t, ... or \u00XX) and everything else as the UTF-8 it is. A byte
// that is not part of valid UTF-8 is written as U+FFFD, so the output stays JSON; the answer is
// then false.
bool appendJsonString(std::string& out, std::string_view text);

} // namespace quillery
