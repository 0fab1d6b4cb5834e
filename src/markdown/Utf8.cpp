#include "markdown/Utf8.h"

#include <cstdint>
#include <cstring>

namespace quillery::utf8 {

namespace {

unsigned char byteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

bool isContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

} // namespace

Decoded decode(std::string_view text, std::size_t at) {
    const unsigned char lead = byteAt(text, at);
    if (lead < 0x80) {
        return {lead, 1};
    }
    const std::size_t left = text.size() - at;
    // The ranges of the second byte follow the table of well-formed sequences in the Unicode
    // standard; they are what rules out overlong forms, surrogates and values above U+10FFFF.
    if (lead >= 0xC2 && lead <= 0xDF) {
        if (left >= 2 && isContinuation(byteAt(text, at + 1))) {
            return {static_cast<char32_t>(((lead & 0x1Fu) << 6) | (byteAt(text, at + 1) & 0x3Fu)),
                    2};
        }
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        if (left >= 3) {
            const unsigned char second = byteAt(text, at + 1);
            const unsigned char low = lead == 0xE0 ? 0xA0 : 0x80;
            const unsigned char high = lead == 0xED ? 0x9F : 0xBF;
            if (second >= low && second <= high && isContinuation(byteAt(text, at + 2))) {
                return {static_cast<char32_t>(((lead & 0x0Fu) << 12) | ((second & 0x3Fu) << 6) |
                                              (byteAt(text, at + 2) & 0x3Fu)),
                        3};
            }
        }
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        if (left >= 4) {
            const unsigned char second = byteAt(text, at + 1);
            const unsigned char low = lead == 0xF0 ? 0x90 : 0x80;
            const unsigned char high = lead == 0xF4 ? 0x8F : 0xBF;
            if (second >= low && second <= high && isContinuation(byteAt(text, at + 2)) &&
                isContinuation(byteAt(text, at + 3))) {
                return {static_cast<char32_t>(((lead & 0x07u) << 18) | ((second & 0x3Fu) << 12) |
                                              ((byteAt(text, at + 2) & 0x3Fu) << 6) |
                                              (byteAt(text, at + 3) & 0x3Fu)),
                        4};
            }
        }
    }
    return {kReplacement, 1};
}

void append(std::string& out, char32_t codePoint) {
    if (codePoint < 0x80) {
        out += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        out += static_cast<char>(0xC0 | (codePoint >> 6));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        out += static_cast<char>(0xE0 | (codePoint >> 12));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (codePoint >> 18));
        out += static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    }
}

bool isValid(std::string_view text) {
    // Every styler checks its whole text first, so this is on the hot path: ASCII eight bytes at
    // a time, and the common two- and three-byte sequences checked inline.
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    const std::size_t size = text.size();
    std::size_t at = 0;
    while (at < size) {
        if (size - at >= 8) {
            std::uint64_t word;
            std::memcpy(&word, bytes + at, sizeof word);
            if ((word & 0x8080808080808080ull) == 0) {
                at += 8;
                continue;
            }
        }
        const unsigned char lead = bytes[at];
        if (lead < 0x80) {
            ++at;
        } else if (lead >= 0xC2 && lead <= 0xDF && at + 1 < size && isContinuation(bytes[at + 1])) {
            at += 2;
        } else if (lead >= 0xE1 && lead <= 0xEC && at + 2 < size && isContinuation(bytes[at + 1]) &&
                   isContinuation(bytes[at + 2])) {
            at += 3;
        } else {
            const Decoded decoded = decode(text, at);
            if (decoded.codePoint == kReplacement && decoded.length == 1) {
                return false;
            }
            at += decoded.length;
        }
    }
    return true;
}

std::string sanitized(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 2);
    std::size_t at = 0;
    while (at < text.size()) {
        const Decoded decoded = decode(text, at);
        if (decoded.codePoint == kReplacement && decoded.length == 1) {
            append(out, kReplacement);
        } else {
            out.append(text.substr(at, decoded.length));
        }
        at += decoded.length;
    }
    return out;
}

} // namespace quillery::utf8
