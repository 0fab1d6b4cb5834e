#include "model/PlainDictionary.h"

#include <algorithm>

namespace quillery {

namespace {

// Canonical UUID texts are held as identifiers so that the many node names in a journal take
// 16 bytes each; every other text is kept as it is.
std::variant<std::string, Identifier, bool, RawJson> fromText(std::string text) {
    if (text.size() == 36) {
        Identifier identifier(text);
        if (identifier.isUuid())
            return identifier;
    }
    return text;
}

} // namespace

PlainValue::PlainValue(std::string text)
    : m_value(fromText(std::move(text))) {
}

PlainValue::PlainValue(std::string_view text)
    : PlainValue(std::string(text)) {
}

PlainValue::PlainValue(const char* text)
    : PlainValue(std::string(text)) {
}

PlainValue::PlainValue(Identifier identifier) {
    if (identifier.isUuid())
        m_value = std::move(identifier);
    else
        m_value = identifier.toString();
}

PlainValue::PlainValue(bool value)
    : m_value(value) {
}

PlainValue::PlainValue(RawJson json)
    : m_value(std::move(json)) {
}

bool PlainValue::isText() const {
    return std::holds_alternative<std::string>(m_value) ||
           std::holds_alternative<Identifier>(m_value);
}

bool PlainValue::isBool() const {
    return std::holds_alternative<bool>(m_value);
}

bool PlainValue::isRawJson() const {
    return std::holds_alternative<RawJson>(m_value);
}

std::optional<std::string> PlainValue::text() const {
    if (auto* text = std::get_if<std::string>(&m_value))
        return *text;
    if (auto* identifier = std::get_if<Identifier>(&m_value))
        return identifier->toString();
    return std::nullopt;
}

std::optional<Identifier> PlainValue::identifier() const {
    if (auto* identifier = std::get_if<Identifier>(&m_value))
        return *identifier;
    if (auto* text = std::get_if<std::string>(&m_value))
        return Identifier(*text);
    return std::nullopt;
}

std::optional<bool> PlainValue::boolValue() const {
    if (auto* value = std::get_if<bool>(&m_value))
        return *value;
    return std::nullopt;
}

const RawJson* PlainValue::rawJson() const {
    return std::get_if<RawJson>(&m_value);
}

bool operator==(const PlainValue& a, const PlainValue& b) {
    // Texts are normalised on the way in, so equal texts are held in the same alternative.
    return a.m_value == b.m_value;
}

PlainDictionary::PlainDictionary(std::initializer_list<Entry> entries) {
    m_entries.reserve(entries.size());
    for (const Entry& entry : entries)
        set(entry.first, entry.second);
}

const PlainValue* PlainDictionary::find(std::string_view key) const {
    for (const Entry& entry : m_entries)
        if (entry.first == key)
            return &entry.second;
    return nullptr;
}

void PlainDictionary::set(std::string key, PlainValue value) {
    for (Entry& entry : m_entries) {
        if (entry.first == key) {
            entry.second = std::move(value);
            return;
        }
    }
    m_entries.emplace_back(std::move(key), std::move(value));
}

bool PlainDictionary::erase(std::string_view key) {
    auto found = std::find_if(m_entries.begin(), m_entries.end(),
                              [key](const Entry& entry) { return entry.first == key; });
    if (found == m_entries.end())
        return false;
    m_entries.erase(found);
    return true;
}

void PlainDictionary::merge(const PlainDictionary& other) {
    for (const Entry& entry : other)
        set(entry.first, entry.second);
}

bool operator==(const PlainDictionary& a, const PlainDictionary& b) {
    if (a.size() != b.size())
        return false;
    for (const auto& [key, value] : a) {
        const PlainValue* other = b.find(key);
        if (!other || !(*other == value))
            return false;
    }
    return true;
}

} // namespace quillery
