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

// The value of each upper-case hexadecimal digit; 0xFF for every other byte. Lower case is a
// different text, so it is not taken as the compact form.
constexpr std::array<std::uint8_t, 256> kHexValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(0xFF);
    for (int c = '0'; c <= '9'; ++c)
        values[static_cast<std::size_t>(c)] = static_cast<std::uint8_t>(c - '0');
    for (int c = 'A'; c <= 'F'; ++c)
        values[static_cast<std::size_t>(c)] = static_cast<std::uint8_t>(c - 'A' + 10);
    return values;
}();

// Where each byte's two digits start in the text form.
constexpr std::array<std::uint8_t, 16> kDigitPositions = {0,  2,  4,  6,  9,  11, 14, 16,
                                                          19, 21, 24, 26, 28, 30, 32, 34};

// Parses exactly the canonical upper-case form of a UUID of the usual variant; anything else
// stays text. Journals hold millions of these, so the digits are read without branching and
// checked once at the end.
bool parseCanonicalUuid(std::string_view text, std::array<std::uint8_t, 16>& bytes) {
    if (text.size() != kUuidTextSize || text[8] != '-' || text[13] != '-' || text[18] != '-' ||
        text[23] != '-')
        return false;
    const auto* digits = reinterpret_cast<const unsigned char*>(text.data());
    std::uint8_t invalid = 0;
    for (std::size_t byte = 0; byte < 16; ++byte) {
        const std::uint8_t high = kHexValues[digits[kDigitPositions[byte]]];
        const std::uint8_t low = kHexValues[digits[kDigitPositions[byte] + 1]];
        invalid |= static_cast<std::uint8_t>(high | low);
        bytes[byte] = static_cast<std::uint8_t>((high << 4) | (low & 0x0F));
    }
    return (invalid & 0xF0) == 0 && (bytes[8] & 0xC0) == 0x80;
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
    const std::size_t start = out.size();
    out.resize(start + kUuidTextSize);
    char* text = out.data() + start;
    text[8] = text[13] = text[18] = text[23] = '-';
    for (std::size_t byte = 0; byte < 16; ++byte) {
        text[kDigitPositions[byte]] = kDigits[m_bytes[byte] >> 4];
        text[kDigitPositions[byte] + 1] = kDigits[m_bytes[byte] & 0xF];
    }
}

std::size_t Identifier::size() const {
    return isUuid() ? kUuidTextSize : textView().size();
}

bool Identifier::isEmpty() const {
    return !isUuid() && textView().empty();
}

std::size_t Identifier::textHash() const {
    return std::hash<std::string_view>{}(textView());
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
