#include "outline/MarkupText.h"

#include <simdjson.h>

namespace quillery::markup_text {

namespace {

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// Length of the well-formed UTF-8 sequence at the start of the text, 0 when there is none.
std::size_t sequenceLength(std::string_view text) {
    for (std::size_t length = 1; length <= 4 && length <= text.size(); ++length)
        if (simdjson::validate_utf8(text.data(), length))
            return length;
    return 0;
}

} // namespace

void appendEscaped(std::string& out, std::string_view text) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    const bool valid = simdjson::validate_utf8(text.data(), text.size());
    for (std::size_t i = 0; i < text.size();) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= 0x80) {
            const std::size_t length = valid ? 1 : sequenceLength(text.substr(i));
            if (length == 0)
                out += kReplacementCharacter;
            else
                out.append(text.substr(i, length));
            i += length == 0 ? 1 : length;
            continue;
        }
        switch (byte) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            if (byte < 0x20 || byte == 0x7F) {
                out += "&#x";
                if (byte >= 0x10)
                    out += kHex[byte >> 4];
                out += kHex[byte & 0xF];
                out += ';';
            } else {
                out += static_cast<char>(byte);
            }
        }
        ++i;
    }
}

} // namespace quillery::markup_text
