#pragma once

#include "model/PlainDictionary.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillery {

// Appends pretty-printed JSON to a string: one entry per line, two spaces per level, keys
// written as "key" : value. Texts are escaped as JSON requires and otherwise kept as UTF-8; raw
// JSON values are copied verbatim. The caller keeps the calls balanced; the writer only tracks
// where commas and line breaks go. The output string may be emptied between calls (to flush it
// somewhere), the writer keeps no position in it.
class JsonWriter {
public:
    // For every open container, outermost first: whether it holds an entry yet.
    using Nesting = std::vector<std::uint8_t>;

    explicit JsonWriter(std::string& out);
    // Continues inside containers that another writer opened, so that parts of one text can be
    // written apart (on other threads, into other strings) and joined in order.
    JsonWriter(std::string& out, Nesting nesting);

    // Compact output has no line breaks and no spaces around the colons.
    void setCompact(bool compact) { m_compact = compact; }
    // Pretty output indents no deeper than this many levels, so that a deeply nested value
    // takes space in proportion to its entries.
    void setIndentLimit(std::size_t levels) { m_indentLimit = levels; }

    const Nesting& nesting() const { return m_hasEntries; }
    void setNesting(Nesting nesting) { m_hasEntries = std::move(nesting); }

    void beginObject();
    void endObject();
    void beginArray();
    void endArray();
    void key(std::string_view name);

    void string(std::string_view text);
    void boolean(bool value);
    void integer(std::int64_t value);
    void raw(std::string_view json);
    void identifier(const Identifier& identifier);
    void value(const PlainValue& value);
    void dictionary(const PlainDictionary& dictionary);

    // True once a text that is not valid UTF-8 was given; such text is written with U+FFFD in
    // place of each bad byte so the output stays JSON, but the caller should not keep it.
    bool sawInvalidText() const { return m_sawInvalidText; }

private:
    void beforeValue();
    void newLine(bool comma);
    void closeContainer(char bracket);
    void appendEscaped(std::string_view text);

    std::string& m_out;
    Nesting m_hasEntries;
    bool m_afterKey = false;
    bool m_compact = false;
    std::size_t m_indentLimit = static_cast<std::size_t>(-1);
    bool m_sawInvalidText = false;
};

} // namespace quillery
