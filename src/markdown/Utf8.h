#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillery::utf8 {

// The code point that stands for every byte that is not part of a well-formed sequence.
inline constexpr char32_t kReplacement = 0xFFFD;

// One decoded code point and the number of bytes it took.
struct Decoded {
    char32_t codePoint;
    std::size_t length;
};

// Decodes the code point that starts at `text[at]` (`at` < size). A well-formed sequence (no
// overlong forms, no surrogates, nothing above U+10FFFF) gives its code point; anything else
// gives U+FFFD for the single byte at `at`, so decoding always moves on by at least one byte.
Decoded decode(std::string_view text, std::size_t at);

// Appends `codePoint` (a scalar value) as UTF-8.
void append(std::string& out, char32_t codePoint);

// True when `text` is well-formed UTF-8 throughout.
bool isValid(std::string_view text);

// `text` with every byte that is not part of a well-formed sequence replaced by U+FFFD.
std::string sanitized(std::string_view text);

} // namespace quillery::utf8
