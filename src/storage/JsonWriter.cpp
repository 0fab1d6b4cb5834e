#include "storage/JsonWriter.h"

#include "storage/JsonString.h"

#include <algorithm>
#include <charconv>

namespace quillery {

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
    if (!appendJsonString(m_out, text))
        m_sawInvalidText = true;
}

} // namespace quillery
