#pragma once

#include "model/Identifier.h"

#include <memory>
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
// Texts are held like identifiers (canonical UUIDs in 16 bytes, other texts shared between
// copies); that never shows through the interface.
class PlainValue {
public:
    PlainValue(std::string text);
    PlainValue(std::string_view text);
    PlainValue(const char* text);
    PlainValue(Identifier identifier);
    PlainValue(bool value);
    PlainValue(RawJson json);

    bool isText() const;
    bool isRawJson() const;

    // The text, when the value is one.
    std::optional<std::string> text() const;
    // The text as an identifier, when the value is a text; cheap for UUIDs.
    std::optional<Identifier> identifier() const;
    // The same without a copy; null when the value is not a text.
    const Identifier* textIdentifier() const { return std::get_if<Identifier>(&m_value); }
    std::optional<bool> boolValue() const;
    const RawJson* rawJson() const;

    friend bool operator==(const PlainValue& a, const PlainValue& b);

private:
    std::variant<Identifier, bool, std::shared_ptr<const RawJson>> m_value;
};

// A small map from text keys to plain values that keeps its keys in insertion order. Record
// payloads hold a handful of keys, so a linear search beats hashing. Copies share their entries
// until one of them is changed, so a record costs one pointer to copy; a notebook holds millions.
class PlainDictionary {
public:
    using Entry = std::pair<std::string, PlainValue>;

    PlainDictionary() = default;
    PlainDictionary(std::initializer_list<Entry> entries);
    PlainDictionary(const PlainDictionary& other);
    PlainDictionary(PlainDictionary&& other) noexcept;
    PlainDictionary& operator=(const PlainDictionary& other);
    PlainDictionary& operator=(PlainDictionary&& other) noexcept;
    ~PlainDictionary();

    const PlainValue* find(std::string_view key) const;
    bool contains(std::string_view key) const { return find(key) != nullptr; }
    // Adds the key at the end, or replaces the value of a key that is already there.
    void set(std::string key, PlainValue value);
    bool erase(std::string_view key);
    // Adds every entry of other, replacing the values of keys that are already here.
    void merge(const PlainDictionary& other);
    // Makes room for this many entries in all, so that adding them allocates once.
    void reserve(std::size_t count);

    std::size_t size() const;
    bool empty() const { return size() == 0; }
    const Entry* begin() const;
    const Entry* end() const { return begin() + size(); }

    // Where the entries lie in memory, for a reader that asks the processor to fetch them ahead.
    const void* storageAddress() const { return m_storage; }

    // Equal when both hold the same keys with equal values, in any order.
    friend bool operator==(const PlainDictionary& a, const PlainDictionary& b);

private:
    struct Storage;

    Entry* entries() const;
    // Gives this dictionary storage of its own with room for at least `capacity` entries.
    void makeUnique(std::size_t capacity);

    Storage* m_storage = nullptr; // null while empty and never changed
};

} // namespace quillery
