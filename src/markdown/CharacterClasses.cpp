#include "markdown/CharacterClasses.h"

#include <array>
#include <cstdint>
#include <unicode/uchar.h>

namespace quillery::charclass {

namespace {

enum AsciiClass : std::uint8_t { kWhitespace = 1, kPunctuation = 2 };

bool icuWhitespace(char32_t c) {
    return c == '\t' || u_charType(static_cast<UChar32>(c)) == U_SPACE_SEPARATOR;
}

bool icuPunctuation(char32_t c) {
    return (U_GET_GC_MASK(static_cast<UChar32>(c)) & U_GC_P_MASK) != 0;
}

const std::array<std::uint8_t, 128>& asciiClasses() {
    static const std::array<std::uint8_t, 128> table = [] {
        std::array<std::uint8_t, 128> classes{};
        for (char32_t c = 0; c < 128; ++c) {
            classes[c] = static_cast<std::uint8_t>((icuWhitespace(c) ? kWhitespace : 0) |
                                                   (icuPunctuation(c) ? kPunctuation : 0));
        }
        return classes;
    }();
    return table;
}

} // namespace

bool isWhitespace(char32_t c) {
    if (c < 128) {
        return (asciiClasses()[c] & kWhitespace) != 0;
    }
    return icuWhitespace(c);
}

bool isPunctuation(char32_t c) {
    if (c < 128) {
        return (asciiClasses()[c] & kPunctuation) != 0;
    }
    return icuPunctuation(c);
}

bool isNewline(char32_t c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

} // namespace quillery::charclass
