#pragma once

#include "markdown/StyledRun.h"

#include <optional>
#include <ostream>
#include <string>
#include <vector>

// A compact way to write expected runs in tables: text(...) for a text run, newline() for a line
// terminator.
namespace quillery::testing {

inline StyledRun text(std::string content, LineType line = LineType::body,
                      LineStyle style = LineStyle::none,
                      std::optional<std::string> link = std::nullopt) {
    return StyledRun{false, std::move(content), line, style, std::move(link)};
}

inline StyledRun text(std::string content, LineStyle style,
                      std::optional<std::string> link = std::nullopt) {
    return text(std::move(content), LineType::body, style, std::move(link));
}

inline StyledRun newline() {
    return StyledRun{true, "\n", LineType::body, LineStyle::none, std::nullopt};
}

} // namespace quillery::testing

namespace quillery {

inline void PrintTo(const StyledRun& run, std::ostream* out) {
    if (run.isLineTerminator) {
        *out << "⏎";
        return;
    }
    static const char* const lines[] = {"h1", "h2", "h3", "h4", "h5", "h6", "body"};
    static const char* const styles[] = {"none", "italic", "bold", "code", "link", "listMarker"};
    *out << "«" << run.text << "»/" << lines[static_cast<int>(run.lineType)] << "/"
         << styles[static_cast<int>(run.style)];
    if (run.link) {
        *out << "->«" << *run.link << "»";
    }
}

} // namespace quillery
