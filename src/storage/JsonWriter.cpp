#include "storage/JsonWriter.h"

#include <algorithm>
#include <array>
#include <charconv>
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

JsonWriter::JsonWriter(std::string& out)
    : m_out(out) {
}

JsonWriter::JsonWriter(std::string& out, Nesting nesting)
    : m_out(out)
    , m_hasEntries(std::move(nesting)) {
}

// A separator and the line break and indentation after it, appended in one piece: a journal
// has one for every value.
void JsonWriter::newLine(bool comma) {
    static constexpr std::string_view kBreaks = ",\n                                ";
    if (m_compact) {
        if (comma)
            m_out += ',';
        return;
    }
    const std::size_t indent = 2 * std::min(m_hasEntries.size(), m_indentLimit);
    const std::size_t length = 1 + indent + (comma ? 1 : 0);
    if (length <= kBreaks.size()) {
        m_out.append(kBreaks.substr(comma ? 0 : 1, length));
        return;
    }
    m_out += kBreaks.substr(comma ? 0 : 1, comma ? 2 : 1);
    m_out.append(indent, ' ');
}

void JsonWriter::beforeValue() {
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_hasEntries.empty())
        return;
    const bool comma = m_hasEntries.back();
    m_hasEntries.back() = true;
    newLine(comma);
}

void JsonWriter::beginObject() {
    beforeValue();
    m_out += '{';
    m_hasEntries.push_back(false);
}

void JsonWriter::beginArray() {
    beforeValue();
    m_out += '[';
    m_hasEntries.push_back(false);
}

void JsonWriter::closeContainer(char bracket) {
    bool hadEntries = m_hasEntries.back();
    m_hasEntries.pop_back();
    if (hadEntries)
        newLine(false);
    m_out += bracket;
}

void JsonWriter::endObject() {
    closeContainer('}');
}

void JsonWriter::endArray() {
    closeContainer(']');
}

void JsonWriter::key(std::string_view name) {
    beforeValue();
    appendEscaped(name);
    m_out += m_compact ? ":" : " : ";
    m_afterKey = true;
}

void JsonWriter::string(std::string_view text) {
    beforeValue();
    appendEscaped(text);
}

void JsonWriter::boolean(bool value) {
    beforeValue();
    m_out += value ? "true" : "false";
}

void JsonWriter::integer(std::int64_t value) {
    beforeValue();
    char digits[24];
    auto end = std::to_chars(std::begin(digits), std::end(digits), value).ptr;
    m_out.append(digits, end);
}

void JsonWriter::raw(std::string_view json) {
    beforeValue();
    m_out += json;
}

void JsonWriter::identifier(const Identifier& identifier) {
    if (!identifier.isUuid()) {
        string(identifier.textView());
        return;
    }
    beforeValue();
    m_out += '"';
    identifier.appendTo(m_out);
    m_out += '"';
}

void JsonWriter::value(const PlainValue& value) {
    if (const Identifier* text = value.textIdentifier())
        identifier(*text);
    else if (auto flag = value.boolValue())
        boolean(*flag);
    else if (const RawJson* json = value.rawJson())
        raw(json->text);
}

void JsonWriter::dictionary(const PlainDictionary& dictionary) {
    beginObject();
    for (const auto& [name, entry] : dictionary) {
        key(name);
        value(entry);
    }
    endObject();
}

void JsonWriter::appendEscaped(std::string_view text) {
    static constexpr char kHex[] = "0123456789abcdef";
    // Most texts are plain ASCII with nothing to escape: copy those in one go.
    if (isPlainAscii(text)) {
        const std::size_t at = m_out.size();
        m_out.resize(at + text.size() + 2);
        char* out = m_out.data() + at;
        out[0] = '"';
        std::memcpy(out + 1, text.data(), text.size());
        out[text.size() + 1] = '"';
        return;
    }
    m_out += '"';
    const bool valid = simdjson::validate_utf8(text.data(), text.size());
    std::size_t runStart = 0;
    for (std::size_t i = 0; i < text.size();) {
        auto c = static_cast<unsigned char>(text[i]);
        if (kByteClass[c] == 0 || (kByteClass[c] == kNonAscii && valid)) {
            ++i;
            continue;
        }
        m_out.append(text.substr(runStart, i - runStart));
        if (c >= 0x80) {
            std::size_t length = validSequenceLength(text.substr(i));
            if (length == 0) {
                m_sawInvalidText = true;
                m_out += kReplacementCharacter;
                length = 1;
            } else {
                m_out.append(text.substr(i, length));
            }
            i += length;
            runStart = i;
            continue;
        }
        switch (c) {
        case '"':
            m_out += "\\\"";
            break;
        case '\\':
            m_out += "\\\\";
            break;
        case '\n':
            m_out += "\\n";
            break;
        case '\r':
            m_out += "\\r";
            break;
        case '\t':
            m_out += "\\t";
            break;
        case '\b':
            m_out += "\\b";
            break;
        case '\f':
            m_out += "\\f";
            break;
        default:
            m_out += "\\u00";
            m_out += kHex[c >> 4];
            m_out += kHex[c & 0xF];
        }
        ++i;
        runStart = i;
    }
    m_out.append(text.substr(runStart));
    m_out += '"';
}

} // namespace quillery
