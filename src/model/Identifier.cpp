#include "model/Identifier.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <new>
#include <stdexcept>
#include <uuid/uuid.h>

namespace quillery {

// Shared by every copy of one long text; freed by the last.
struct Identifier::SharedText {
    std::atomic<std::uint32_t> references;
    std::uint32_t size;
    char* text() { return reinterpret_cast<char*>(this + 1); }
};

namespace {

constexpr std::size_t kUuidTextSize = 36;

bool isHyphenPosition(std::size_t i) {
    return i == 8 || i == 13 || i == 18 || i == 23;
}

int hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1; // lower case is a different text, so it is not taken as the compact form
}

// Parses exactly the canonical upper-case form of a UUID of the usual variant; anything else
// stays text.
bool parseCanonicalUuid(std::string_view text, std::array<std::uint8_t, 16>& bytes) {
    if (text.size() != kUuidTextSize)
        return false;
    std::size_t byte = 0;
    for (std::size_t i = 0; i < kUuidTextSize;) {
        if (isHyphenPosition(i)) {
            if (text[i] != '-')
                return false;
            ++i;
            continue;
        }
        int high = hexValue(text[i]);
        int low = hexValue(text[i + 1]);
        if (high < 0 || low < 0)
            return false;
        bytes[byte++] = static_cast<std::uint8_t>((high << 4) | low);
        i += 2;
    }
    return (bytes[8] & 0xC0) == 0x80;
}

} // namespace

Identifier::Identifier() {
    m_bytes[kTagByte] = kInlineTag;
}

Identifier::Identifier(std::string_view text) {
    if (parseCanonicalUuid(text, m_bytes))
        return;
    m_bytes = {};
    if (text.size() <= kInlineCapacity) {
        m_bytes[kTagByte] = kInlineTag;
        m_bytes[kTagByte + 1] = static_cast<std::uint8_t>(text.size());
        std::memcpy(m_bytes.data(), text.data(), text.size());
        return;
    }
    if (text.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("identifier text too long");
    void* memory = std::malloc(sizeof(SharedText) + text.size());
    if (!memory)
        throw std::bad_alloc();
    auto* block = new (memory) SharedText{{1}, static_cast<std::uint32_t>(text.size())};
    std::memcpy(block->text(), text.data(), text.size());
    std::memcpy(m_bytes.data(), &block, sizeof block);
    m_bytes[kTagByte] = kSharedTag;
}

Identifier::Identifier(const Identifier& other)
    : m_bytes(other.m_bytes) {
    retain();
}

Identifier::Identifier(Identifier&& other) noexcept
    : m_bytes(other.m_bytes) {
    other.m_bytes = {};
    other.m_bytes[kTagByte] = kInlineTag;
}

Identifier& Identifier::operator=(const Identifier& other) {
    other.retain();
    release();
    m_bytes = other.m_bytes;
    return *this;
}

Identifier& Identifier::operator=(Identifier&& other) noexcept {
    if (this != &other) {
        release();
        m_bytes = other.m_bytes;
        other.m_bytes = {};
        other.m_bytes[kTagByte] = kInlineTag;
    }
    return *this;
}

Identifier::~Identifier() {
    release();
}

Identifier::SharedText* Identifier::shared() const {
    SharedText* block;
    std::memcpy(&block, m_bytes.data(), sizeof block);
    return block;
}

void Identifier::retain() const {
    if (isShared())
        shared()->references.fetch_add(1, std::memory_order_relaxed);
}

void Identifier::release() {
    if (!isShared())
        return;
    SharedText* block = shared();
    if (block->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        block->~SharedText();
        std::free(block);
    }
}

Identifier Identifier::makeRandom() {
    Identifier identifier;
    uuid_t bytes;
    uuid_generate_random(bytes);
    std::memcpy(identifier.m_bytes.data(), bytes, identifier.m_bytes.size());
    return identifier;
}

std::string_view Identifier::textView() const {
    if (isUuid())
        return {};
    if (isShared()) {
        SharedText* block = shared();
        return {block->text(), block->size};
    }
    return {reinterpret_cast<const char*>(m_bytes.data()), m_bytes[kTagByte + 1]};
}

std::string Identifier::toString() const {
    std::string out;
    appendTo(out);
    return out;
}

void Identifier::appendTo(std::string& out) const {
    if (!isUuid()) {
        out += textView();
        return;
    }
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::size_t start = out.size();
    out.resize(start + kUuidTextSize);
    char* p = out.data() + start;
    std::size_t byte = 0;
    for (std::size_t i = 0; i < kUuidTextSize;) {
        if (isHyphenPosition(i)) {
            p[i++] = '-';
            continue;
        }
        p[i] = kDigits[m_bytes[byte] >> 4];
        p[i + 1] = kDigits[m_bytes[byte] & 0xF];
        ++byte;
        i += 2;
    }
}

std::size_t Identifier::size() const {
    return isUuid() ? kUuidTextSize : textView().size();
}

bool Identifier::isEmpty() const {
    return !isUuid() && textView().empty();
}

std::size_t Identifier::hash() const {
    if (!isUuid())
        return std::hash<std::string_view>{}(textView());
    // Random UUIDs are uniformly distributed already; fold the bytes together.
    std::uint64_t a;
    std::uint64_t b;
    std::memcpy(&a, m_bytes.data(), 8);
    std::memcpy(&b, m_bytes.data() + 8, 8);
    return static_cast<std::size_t>((a ^ b) * 0x9E3779B97F4A7C15ull);
}

bool operator==(const Identifier& a, std::string_view text) {
    if (!a.isUuid())
        return a.textView() == text;
    std::array<std::uint8_t, 16> bytes;
    return parseCanonicalUuid(text, bytes) && bytes == a.m_bytes;
}

std::strong_ordering operator<=>(const Identifier& a, const Identifier& b) {
    // Upper-case hex digits sort like the nibbles they stand for, so the bytes sort like the text.
    if (a.isUuid() && b.isUuid())
        return a.m_bytes <=> b.m_bytes;
    return a.toString() <=> b.toString();
}

} // namespace quillery
