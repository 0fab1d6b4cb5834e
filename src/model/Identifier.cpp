#include "model/Identifier.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <uuid/uuid.h>

namespace quillery {

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

// Parses exactly the canonical upper-case form; anything else stays text.
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
    return true;
}

const std::shared_ptr<const std::string>& emptyText() {
    static const auto empty = std::make_shared<const std::string>();
    return empty;
}

} // namespace

Identifier::Identifier()
    : m_text(emptyText()) {
}

Identifier::Identifier(std::string_view text) {
    if (!parseCanonicalUuid(text, m_uuid))
        m_text = text.empty() ? emptyText() : std::make_shared<const std::string>(text);
}

Identifier Identifier::makeRandom() {
    Identifier identifier;
    identifier.m_text.reset();
    uuid_t bytes;
    uuid_generate_random(bytes);
    std::memcpy(identifier.m_uuid.data(), bytes, identifier.m_uuid.size());
    return identifier;
}

std::string Identifier::toString() const {
    std::string out;
    appendTo(out);
    return out;
}

void Identifier::appendTo(std::string& out) const {
    if (m_text) {
        out += *m_text;
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
        p[i] = kDigits[m_uuid[byte] >> 4];
        p[i + 1] = kDigits[m_uuid[byte] & 0xF];
        ++byte;
        i += 2;
    }
}

std::size_t Identifier::size() const {
    return m_text ? m_text->size() : kUuidTextSize;
}

bool Identifier::isEmpty() const {
    return m_text && m_text->empty();
}

std::size_t Identifier::hash() const {
    if (m_text)
        return std::hash<std::string_view>{}(*m_text);
    // Random UUIDs are uniformly distributed already; fold the bytes together.
    std::uint64_t a;
    std::uint64_t b;
    std::memcpy(&a, m_uuid.data(), 8);
    std::memcpy(&b, m_uuid.data() + 8, 8);
    return static_cast<std::size_t>(a ^ (b * 0x9E3779B97F4A7C15ull));
}

bool operator==(const Identifier& a, const Identifier& b) {
    // Every canonical UUID text is held compactly, so equal texts always have equal forms.
    if (a.m_text || b.m_text)
        return a.m_text && b.m_text && *a.m_text == *b.m_text;
    return a.m_uuid == b.m_uuid;
}

bool operator==(const Identifier& a, std::string_view text) {
    if (a.m_text)
        return *a.m_text == text;
    std::array<std::uint8_t, 16> bytes;
    return parseCanonicalUuid(text, bytes) && bytes == a.m_uuid;
}

std::strong_ordering operator<=>(const Identifier& a, const Identifier& b) {
    // Upper-case hex digits sort like the nibbles they stand for, so the bytes sort like the text.
    if (!a.m_text && !b.m_text)
        return a.m_uuid <=> b.m_uuid;
    return a.toString() <=> b.toString();
}

} // namespace quillery
