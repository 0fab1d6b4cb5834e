#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace quillery {

// The cursor that walks one line of well-formed UTF-8. Nothing is skipped implicitly: spaces and
// tabs are ordinary characters. The line must outlive the scanner, and so must every view it
// hands out.
//
// The sets it takes up to or from (the five markers, and "]()" of links) are ASCII, and in
// well-formed UTF-8 no byte of a longer sequence equals an ASCII byte, so those scans step by
// byte and still only ever stop on code point boundaries.
class LineScanner {
public:
    explicit LineScanner(std::string_view line);

    bool atEnd() const { return m_location == m_line.size(); }
    std::size_t location() const { return m_location; }
    void setLocation(std::size_t location) { m_location = location; }

    // take-up-to(markers): the longest non-empty stretch without a marker character, or nothing.
    std::optional<std::string_view> takeUpToMarker();
    // take-from(markers), repeated until it yields nothing: the maximal marker run, maybe empty.
    std::string_view takeMarkerRun();
    // take-up-to("]()").
    std::optional<std::string_view> takeUpToLinkDelimiter();
    // take-from("]()"), result dropped.
    void skipLinkDelimiters();
    // Steps over `text` when the line continues with it here; says whether it did.
    bool skip(std::string_view text);
    // Whether take-up-to(whitespace or punctuation) would succeed here: a character follows and it
    // is neither whitespace nor punctuation. The cursor does not move.
    bool atWordCharacter() const;

private:
    template <typename InSet>
    std::optional<std::string_view> takeUpTo(InSet inSet);
    template <typename InSet>
    std::string_view takeFrom(InSet inSet);

    std::string_view m_line;
    std::size_t m_location = 0;
};

} // namespace quillery
