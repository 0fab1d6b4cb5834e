#pragma once

#include <string>
#include <string_view>

namespace quillery::markup_text {

// Appends text as XML or HTML character data or attribute value: "&", "<", ">" and '"' as
// entities; line feed, tab and carriage return as character references so that attribute values
// keep them; other control characters as character references too; bytes that are not UTF-8 as
// U+FFFD, so the output is always well-formed UTF-8.
void appendEscaped(std::string& out, std::string_view text);

} // namespace quillery::markup_text
