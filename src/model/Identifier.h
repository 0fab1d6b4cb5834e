#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace quillery {

// The text that names a node, a picture or a client. Almost every identifier is a random UUID in
// its 36-character upper-case form; those are held as their 16 bytes, because a large notebook
// holds millions of them. Any other text ("root", "deleted", "none", or whatever a journal from
// elsewhere says) is kept as it is: up to 8 bytes inside the object, longer texts in a shared,
// immutable, reference-counted block. Either way the identifier behaves exactly like its text,
// is 16 bytes large, and is cheap to copy. Texts of 4 GiB or more are refused (length_error).
class Identifier {
public:
    // The empty text.
    Identifier();
    explicit Identifier(std::string_view text);
    explicit Identifier(const char* text)
        : Identifier(std::string_view(text)) {}
    Identifier(const Identifier& other);
    Identifier(Identifier&& other) noexcept;
    Identifier& operator=(const Identifier& other);
    Identifier& operator=(Identifier&& other) noexcept;
    ~Identifier();

    // A new random (version 4) UUID in upper-case text form.
    static Identifier makeRandom();

    std::string toString() const;
    void appendTo(std::string& out) const;
    std::size_t size() const;
    bool isEmpty() const;
    bool isUuid() const { return (m_bytes[kTagByte] & 0xC0) == 0x80; }
    // The text itself, when the identifier is not a UUID (an empty view for a UUID).
    std::string_view textView() const;

    std::size_t hash() const {
        if (!isUuid())
            return textHash();
        // Random UUIDs are uniformly distributed already; fold the bytes together.
        std::uint64_t a;
        std::uint64_t b;
        std::memcpy(&a, m_bytes.data(), 8);
        std::memcpy(&b, m_bytes.data() + 8, 8);
        return static_cast<std::size_t>((a ^ b) * 0x9E3779B97F4A7C15ull);
    }

    // Where a long text lies in memory (null for other identifiers), for a reader that asks the
    // processor to fetch it ahead.
    const void* storageAddress() const { return isShared() ? shared() : nullptr; }

    friend bool operator==(const Identifier& a, const Identifier& b) {
        // UUIDs and short texts are equal exactly when their bytes are; only two shared blocks
        // need their texts compared.
        if (a.sameBytes(b))
            return true;
        return a.isShared() && b.isShared() && a.textView() == b.textView();
    }
    friend bool operator==(const Identifier& a, std::string_view text);
    // Orders like the texts do.
    friend std::strong_ordering operator<=>(const Identifier& a, const Identifier& b);

private:
    // Byte 8 of a UUID holds its variant, 10xxxxxx for every UUID of the usual variant; only
    // those are held as bytes. Other forms put a tag there: kInlineTag with the length in byte 9
    // and the text in bytes 0 to 7, or kSharedTag with a pointer to the shared block in bytes 0
    // to 7.
    static constexpr std::size_t kTagByte = 8;
    static constexpr std::uint8_t kInlineTag = 0x01;
    static constexpr std::uint8_t kSharedTag = 0x02;
    static constexpr std::size_t kInlineCapacity = 8;
    struct SharedText;

    bool isShared() const { return m_bytes[kTagByte] == kSharedTag; }
    std::size_t textHash() const;
    // Two word compares; std::array's operator== calls memcmp.
    bool sameBytes(const Identifier& other) const {
        std::uint64_t a[2];
        std::uint64_t b[2];
        std::memcpy(a, m_bytes.data(), sizeof a);
        std::memcpy(b, other.m_bytes.data(), sizeof b);
        return a[0] == b[0] && a[1] == b[1];
    }
    SharedText* shared() const;
    void retain() const;
    void release();

    alignas(8) std::array<std::uint8_t, 16> m_bytes{};
};

struct IdentifierHash {
    std::size_t operator()(const Identifier& identifier) const { return identifier.hash(); }
};

} // namespace quillery
