#pragma once

#include "markdown/StyledRun.h"
#include "markdown/Styles.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillery {

// Turns one note's text into styled runs: headings ("# " prefixes and "="/"-" underlines),
// italic, bold, code and links, with backslash escapes inside marker runs. Line oriented, no
// nesting. Invalid UTF-8 is read with each bad byte as U+FFFD.
class MarkdownStyler {
public:
    explicit MarkdownStyler(std::string_view text);

    BasicStyles h1, h2, h3, h4, h5, h6, body, link, bold, italic, code;

    // The runs in order; always ends with a line terminator.
    std::vector<StyledRun> attributedString();
    // The font, colour and link of a text run under this styler's slots.
    RunPresentation presentation(const StyledRun& run) const;
};

} // namespace quillery
