#pragma once

#include "model/Identifier.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace quillery {

// A JSON value that is neither a text nor a truth value (a number, null, an array, an object),
// kept as its exact JSON text so that it is written back unchanged.
struct RawJson {
    std::string text;
    friend bool operator==(const RawJson&, const RawJson&) = default;
};

// One value of a plain dictionary: a text, a truth value or any other JSON value as raw JSON.
// Texts that are canonical UUIDs are stored compactly; that never shows through the interface.
class PlainValue {
public:
    PlainValue(std::string text);
    PlainValue(std::string_view text);
    PlainValue(const char* text);
    PlainValue(Identifier identifier);
    PlainValue(bool value);
    PlainValue(RawJson json);

    bool isText() const;
    bool isBool() const;
    bool isRawJson() const;

    // The text, when the value is one.
    std::optional<std::string> text() const;
    // The text as an identifier, when the value is a text; cheap for UUIDs.
    std::optional<Identifier> identifier() const;
    std::optional<bool> boolValue() const;
    const RawJson* rawJson() const;

    friend bool operator==(const PlainValue& a, const PlainValue& b);

private:
    std::variant<std::string, Identifier, bool, RawJson> m_value;
};

// A small map from text keys to plain values that keeps its keys in insertion order. Record
// payloads hold a handful of keys, so a linear search beats hashing.
class PlainDictionary {
public:
    using Entry = std::pair<std::string, PlainValue>;

    PlainDictionary() = default;
    PlainDictionary(std::initializer_list<Entry> entries);

    const PlainValue* find(std::string_view key) const;
    bool contains(std::string_view key) const { return find(key) != nullptr; }
    // Adds the key at the end, or replaces the value of a key that is already there.
    void set(std::string key, PlainValue value);
    bool erase(std::string_view key);
    // Adds every entry of other, replacing the values of keys that are already here.
    void merge(const PlainDictionary& other);

    std::size_t size() const { return m_entries.size(); }
    bool empty() const { return m_entries.empty(); }
    auto begin() const { return m_entries.begin(); }
    auto end() const { return m_entries.end(); }

    // Equal when both hold the same keys with equal values, in any order.
    friend bool operator==(const PlainDictionary& a, const PlainDictionary& b);

private:
    std::vector<Entry> m_entries;
};

} // namespace quillery
