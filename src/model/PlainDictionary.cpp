#include "model/PlainDictionary.h"

#include <algorithm>
#include <atomic>
#include <new>

namespace quillery {

PlainValue::PlainValue(std::string text)
    : m_value(Identifier(text)) {
}

PlainValue::PlainValue(std::string_view text)
    : m_value(Identifier(text)) {
}

PlainValue::PlainValue(const char* text)
    : m_value(Identifier(text)) {
}

PlainValue::PlainValue(Identifier identifier)
    : m_value(std::move(identifier)) {
}

PlainValue::PlainValue(bool value)
    : m_value(value) {
}

PlainValue::PlainValue(RawJson json)
    : m_value(std::make_shared<const RawJson>(std::move(json))) {
}

bool PlainValue::isText() const {
    return std::holds_alternative<Identifier>(m_value);
}

bool PlainValue::isRawJson() const {
    return std::holds_alternative<std::shared_ptr<const RawJson>>(m_value);
}

std::optional<std::string> PlainValue::text() const {
    if (const Identifier* text = textIdentifier())
        return text->toString();
    return std::nullopt;
}

std::optional<Identifier> PlainValue::identifier() const {
    if (const Identifier* text = textIdentifier())
        return *text;
    return std::nullopt;
}

std::optional<bool> PlainValue::boolValue() const {
    if (auto* value = std::get_if<bool>(&m_value))
        return *value;
    return std::nullopt;
}

const RawJson* PlainValue::rawJson() const {
    auto* json = std::get_if<std::shared_ptr<const RawJson>>(&m_value);
    return json ? json->get() : nullptr;
}

bool operator==(const PlainValue& a, const PlainValue& b) {
    if (a.isRawJson() && b.isRawJson())
        return *a.rawJson() == *b.rawJson();
    return a.m_value == b.m_value;
}

// The entries follow the header in the same allocation.
struct PlainDictionary::Storage {
    std::atomic<std::uint32_t> references;
    std::uint32_t size;
    std::uint32_t capacity;
    std::uint32_t padding;
};

namespace {

template <typename Storage>
Storage* allocateStorage(std::size_t capacity) {
    void* memory = ::operator new(sizeof(Storage) + capacity * sizeof(PlainDictionary::Entry));
    return new (memory) Storage{{1}, 0, static_cast<std::uint32_t>(capacity), 0};
}

template <typename Storage>
void releaseStorage(Storage* storage) {
    if (!storage || storage->references.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    auto* entries = reinterpret_cast<PlainDictionary::Entry*>(storage + 1);
    std::destroy_n(entries, storage->size);
    storage->~Storage();
    ::operator delete(storage);
}

} // namespace

PlainDictionary::PlainDictionary(std::initializer_list<Entry> entries) {
    reserve(entries.size());
    for (const Entry& entry : entries)
        set(entry.first, entry.second);
}

PlainDictionary::PlainDictionary(const PlainDictionary& other)
    : m_storage(other.m_storage) {
    if (m_storage)
        m_storage->references.fetch_add(1, std::memory_order_relaxed);
}

PlainDictionary::PlainDictionary(PlainDictionary&& other) noexcept
    : m_storage(std::exchange(other.m_storage, nullptr)) {
}

PlainDictionary& PlainDictionary::operator=(const PlainDictionary& other) {
    if (other.m_storage)
        other.m_storage->references.fetch_add(1, std::memory_order_relaxed);
    releaseStorage(m_storage);
    m_storage = other.m_storage;
    return *this;
}

PlainDictionary& PlainDictionary::operator=(PlainDictionary&& other) noexcept {
    if (this != &other) {
        releaseStorage(m_storage);
        m_storage = std::exchange(other.m_storage, nullptr);
    }
    return *this;
}

PlainDictionary::~PlainDictionary() {
    releaseStorage(m_storage);
}

PlainDictionary::Entry* PlainDictionary::entries() const {
    static_assert(sizeof(Storage) % alignof(Entry) == 0);
    return m_storage ? reinterpret_cast<Entry*>(m_storage + 1) : nullptr;
}

std::size_t PlainDictionary::size() const {
    return m_storage ? m_storage->size : 0;
}

const PlainDictionary::Entry* PlainDictionary::begin() const {
    return entries();
}

void PlainDictionary::makeUnique(std::size_t capacity) {
    const bool shared = m_storage && m_storage->references.load(std::memory_order_acquire) != 1;
    if (m_storage && !shared && m_storage->capacity >= capacity)
        return;
    const std::size_t count = size();
    std::size_t room = std::max(capacity, count);
    // Payloads hold a handful of keys, so small ones grow one entry at a time and waste nothing;
    // larger ones double.
    if (count >= 4 && capacity > count)
        room = std::max(room, count * 2);
    Storage* fresh = allocateStorage<Storage>(room);
    auto* target = reinterpret_cast<Entry*>(fresh + 1);
    if (shared)
        std::uninitialized_copy_n(entries(), count, target);
    else
        std::uninitialized_move_n(entries(), count, target);
    fresh->size = static_cast<std::uint32_t>(count);
    releaseStorage(m_storage);
    m_storage = fresh;
}

void PlainDictionary::reserve(std::size_t count) {
    if (count > 0)
        makeUnique(count);
}

const PlainValue* PlainDictionary::find(std::string_view key) const {
    for (const Entry& entry : *this)
        if (entry.first == key)
            return &entry.second;
    return nullptr;
}

void PlainDictionary::set(std::string key, PlainValue value) {
    const std::size_t count = size();
    for (std::size_t i = 0; i < count; ++i) {
        if (entries()[i].first == key) {
            makeUnique(count);
            entries()[i].second = std::move(value);
            return;
        }
    }
    makeUnique(count + 1);
    std::construct_at(entries() + count, std::move(key), std::move(value));
    ++m_storage->size;
}

bool PlainDictionary::erase(std::string_view key) {
    const std::size_t count = size();
    const Entry* found =
        std::find_if(begin(), end(), [key](const Entry& e) { return e.first == key; });
    if (found == end())
        return false;
    const std::size_t index = static_cast<std::size_t>(found - begin());
    makeUnique(count);
    Entry* all = entries();
    std::move(all + index + 1, all + count, all + index);
    std::destroy_at(all + count - 1);
    --m_storage->size;
    return true;
}

void PlainDictionary::merge(const PlainDictionary& other) {
    if (other.empty())
        return;
    PlainDictionary keep = other; // other may be this very dictionary
    reserve(size() + keep.size());
    for (const Entry& entry : keep)
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
