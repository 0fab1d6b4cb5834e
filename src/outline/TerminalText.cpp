#include "outline/TerminalText.h"

namespace quillery::terminal_text {

namespace {

bool isControl(unsigned char byte) {
    return (byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7F;
}

void appendEscape(std::string& out, unsigned char byte) {
    static constexpr char kHex[] = "0123456789abcdef";
    out += "\\x";
    out += kHex[byte >> 4];
    out += kHex[byte & 0xF];
}

} // namespace

void appendShown(std::string& out, std::string_view text) {
    std::size_t runStart = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const bool c1 = byte == 0xC2 && i + 1 < text.size() &&
                        static_cast<unsigned char>(text[i + 1]) >= 0x80 &&
                        static_cast<unsigned char>(text[i + 1]) <= 0x9F;
        if (!c1 && !isControl(byte))
            continue;
        out.append(text.substr(runStart, i - runStart));
        appendEscape(out, byte);
        if (c1)
            appendEscape(out, static_cast<unsigned char>(text[++i]));
        runStart = i + 1;
    }
    out.append(text.substr(runStart));
}

std::string shown(std::string_view text) {
    std::string out;
    appendShown(out, text);
    return out;
}

} // namespace quillery::terminal_text
