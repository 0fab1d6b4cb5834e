#pragma once

#include <optional>
#include <string>

namespace quillery {

enum class LineType { h1 = 0, h2 = 1, h3 = 2, h4 = 3, h5 = 4, h6 = 5, body = 6 };
// A list item's line starts with a `listMarker` run: its bullet or number and a space.
enum class LineStyle { none = 0, italic = 1, bold = 2, code = 3, link = 4, listMarker = 5 };

// One piece of styled note text: a text run, or a line terminator (a bare line feed with no line
// type, style or attributes).
struct StyledRun {
    bool isLineTerminator = false;
    std::string text; // UTF-8; "\n" for a terminator
    LineType lineType = LineType::body;
    LineStyle style = LineStyle::none;
    std::optional<std::string> link; // only on the text of a complete link

    friend bool operator==(const StyledRun&, const StyledRun&) = default;
};

} // namespace quillery
