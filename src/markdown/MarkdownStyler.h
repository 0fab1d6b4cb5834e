#pragma once

#include "markdown/StyledRun.h"
#include "markdown/Styles.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillery {

class LineScanner;

// Turns one note's text into styled runs: headings ("# " prefixes, and underlines: a next line of
// "=" or "-" alone), list items ("- ", "* " or "1. " at the start of a line), italic, bold, code
// and links, with backslash escapes inside marker runs. Line oriented, no nesting. Invalid UTF-8
// is read with each bad byte as U+FFFD. Every run's time is linear in the text's length.
//
// The text is read as code points. A byte that does not belong to a well-formed UTF-8 sequence
// (a stray continuation byte, a truncated or overlong sequence, an encoded surrogate, a value past
// U+10FFFF) is read as U+FFFD on its own, so every run holds well-formed UTF-8 whatever the input.
class MarkdownStyler {
public:
    explicit MarkdownStyler(std::string_view text);

    BasicStyles h1, h2, h3, h4, h5, h6, body, link, bold, italic, code;

    // The runs in order; always ends with a line terminator.
    std::vector<StyledRun> attributedString();
    // The font, colour and link of a text run under this styler's slots. A line terminator has no
    // attributes: it gives the empty presentation (no family, size 0, no link).
    RunPresentation presentation(const StyledRun& run) const;

private:
    // Styles one source line; returns whether the next line is an underline to be consumed.
    bool styleLine(std::string_view line, std::optional<std::string_view> nextLine,
                   std::vector<StyledRun>& runs);
    std::string_view headingText(std::string_view text, std::size_t level);
    void scanInline(std::string_view text, std::vector<StyledRun>& runs);
    void appendSpan(LineScanner& scanner, std::vector<StyledRun>& runs);
    void appendPiece(std::vector<StyledRun>& runs, std::string_view text, LineStyle style,
                     std::optional<std::string_view> linkTarget = std::nullopt) const;

    std::string m_text; // well-formed UTF-8
    LineType m_currentType = LineType::body;
    std::string m_heading; // the text of the current heading line once its markers are removed
};

} // namespace quillery
