#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace quillery {

// The text that names a node, a picture or a client. Almost every identifier is a random UUID in
// its 36-character upper-case form; those are held as their 16 bytes, because a large notebook
// holds millions of them. Any other text ("root", "deleted", "none", or whatever a journal from
// elsewhere says) is kept as it is. Either way the identifier behaves exactly like its text.
class Identifier {
public:
    // The empty text.
    Identifier();
    explicit Identifier(std::string_view text);
    explicit Identifier(const char* text)
        : Identifier(std::string_view(text)) {}

    // A new random (version 4) UUID in upper-case text form.
    static Identifier makeRandom();

    std::string toString() const;
    void appendTo(std::string& out) const;
    std::size_t size() const;
    bool isEmpty() const;
    bool isUuid() const { return !m_text; }

    std::size_t hash() const;

    friend bool operator==(const Identifier& a, const Identifier& b);
    friend bool operator==(const Identifier& a, std::string_view text);
    // Orders like the texts do.
    friend std::strong_ordering operator<=>(const Identifier& a, const Identifier& b);

private:
    std::array<std::uint8_t, 16> m_uuid{};
    std::shared_ptr<const std::string> m_text; // null exactly when the identifier is a UUID
};

struct IdentifierHash {
    std::size_t operator()(const Identifier& identifier) const { return identifier.hash(); }
};

} // namespace quillery
