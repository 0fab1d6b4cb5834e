#pragma once

namespace quillery::charclass {

// The character classes of the markdown dialect. Whitespace and punctuation come from ICU's
// general categories; ASCII answers come from a table built from ICU on first use.

// Unicode general category Zs, plus tab.
bool isWhitespace(char32_t c);
// General categories Pc, Pd, Ps, Pe, Pi, Pf and Po. The backquote (Sk) is not punctuation.
bool isPunctuation(char32_t c);
// U+000A to U+000D, U+0085, U+2028 and U+2029: each one ends a line.
bool isNewline(char32_t c);

inline bool isWhitespaceOrNewline(char32_t c) {
    return isWhitespace(c) || isNewline(c);
}

inline bool isWhitespaceOrPunctuation(char32_t c) {
    return isWhitespace(c) || isPunctuation(c);
}

// The five marker characters: [ \ * _ `
inline bool isMarker(char32_t c) {
    return c == '[' || c == '\\' || c == '*' || c == '_' || c == '`';
}

// The characters that bound the text and target of a link: ] ( )
inline bool isLinkDelimiter(char32_t c) {
    return c == ']' || c == '(' || c == ')';
}

} // namespace quillery::charclass
