#include "storage/JsonString.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <simdjson.h>

namespace quillery {

namespace {

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// kEscape for the bytes a JSON text cannot hold as they are (control characters, '"' and '\\'),
// kNonAscii for the bytes of UTF-8 sequences, 0 for the rest.
constexpr std::uint8_t kEscape = 1;
constexpr std::uint8_t kNonAscii = 2;
constexpr std::array<std::uint8_t, 256> kByteClass = [] {
    std::array<std::uint8_t, 256> table{};
    for (int c = 0; c < 0x20; ++c)
        table[static_cast<std::size_t>(c)] = kEscape;
    table['"'] = kEscape;
    table['\\'] = kEscape;
    for (int c = 0x80; c < 0x100; ++c)
        table[static_cast<std::size_t>(c)] = kNonAscii;
    return table;
}();

// Length of the valid UTF-8 sequence that starts the text, or 0 when it does not start with one.
std::size_t validSequenceLength(std::string_view text) {
    auto byte = [&](std::size_t i) {
        return static_cast<unsigned char>(text[i]);
    };
    auto continuation = [&](std::size_t i) {
        return i < text.size() && (byte(i) & 0xC0) == 0x80;
    };
    unsigned char lead = byte(0);
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return continuation(1) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        if (!continuation(1) || !continuation(2))
            return 0;
        if ((lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) > 0x9F))
            return 0; // overlong form or surrogate
        return 3;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        if (!continuation(1) || !continuation(2) || !continuation(3))
            return 0;
        if ((lead == 0xF0 && byte(1) < 0x90) || (lead == 0xF4 && byte(1) > 0x8F))
            return 0; // overlong form or beyond U+10FFFF
        return 4;
    }
    return 0;
}

// Whether no byte of the text needs escaping or is part of a UTF-8 sequence, looked at eight
// bytes at a time: a journal is mostly such texts.
bool isPlainAscii(std::string_view text) {
    constexpr std::uint64_t kOnes = 0x0101010101010101ull;
    constexpr std::uint64_t kHighBits = 0x8080808080808080ull;
    // A byte of the word is zero exactly where the high bit of this is set (for bytes < 0x80).
    auto zeroBytes = [](std::uint64_t word) {
        return (word - kOnes) & ~word & kHighBits;
    };
    std::size_t i = 0;
    for (; i + 8 <= text.size(); i += 8) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + i, 8);
        const std::uint64_t special = (word & kHighBits) | zeroBytes(word & ~(kOnes * 0x1F)) |
                                      zeroBytes(word ^ (kOnes * '"')) |
                                      zeroBytes(word ^ (kOnes * '\\'));
        if (special != 0)
            return false;
    }
    std::uint8_t classes = 0;
    for (; i < text.size(); ++i)
        classes |= kByteClass[static_cast<unsigned char>(text[i])];
    return classes == 0;
}

} // namespace

bool appendJsonString(std::string& out, std::string_view text) {
    static constexpr char kHex[] = "0123456789abcdef";
    // Most texts are plain ASCII with nothing to escape: copy those in one go.
    if (isPlainAscii(text)) {
        const std::size_t at = out.size();
        out.resize(at + text.size() + 2);
        char* to = out.data() + at;
        to[0] = '"';
        std::memcpy(to + 1, text.data(), text.size());
        to[text.size() + 1] = '"';
        return true;
    }
    out += '"';
    bool allValid = true;
    const bool valid = simdjson::validate_utf8(text.data(), text.size());
    std::size_t runStart = 0;
    for (std::size_t i = 0; i < text.size();) {
        auto c = static_cast<unsigned char>(text[i]);
        if (kByteClass[c] == 0 || (kByteClass[c] == kNonAscii && valid)) {
            ++i;
            continue;
        }
        out.append(text.substr(runStart, i - runStart));
        if (c >= 0x80) {
            std::size_t length = validSequenceLength(text.substr(i));
            if (length == 0) {
                allValid = false;
                out += kReplacementCharacter;
                length = 1;
            } else {
                out.append(text.substr(i, length));
            }
            i += length;
            runStart = i;
            continue;
        }
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\b':
            out += "\\b";
            break;
        case '\f':
            out += "\\f";
            break;
        default:
            out += "\\u00";
            out += kHex[c >> 4];
            out += kHex[c & 0xF];
        }
        ++i;
        runStart = i;
    }
    out.append(text.substr(runStart));
    out += '"';
    return allValid;
}

} // namespace quillery
