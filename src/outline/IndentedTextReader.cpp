#include "outline/IndentedTextReader.h"

#include "outline/OutlineSyntax.h"

#include <algorithm>
#include <vector>

namespace quillery {

ParsedOutline readIndentedText(std::string_view text) {
    using namespace outline_syntax;
    if (auto line = outline_import::lineOfInvalidUtf8(text))
        return outline_import::failure(*line, "the text is not UTF-8");

    ParsedOutline parsed;
    Outline& outline = parsed.outline;
    struct Level {
        std::size_t indent;
        std::size_t depth;
    };
    std::vector<Level> levels;
    // The column where the text of the last note starts when it had a marker (so further
    // lines can follow it); past every column otherwise.
    constexpr std::size_t kNoColumn = static_cast<std::size_t>(-1);
    std::size_t textColumn = kNoColumn;
    std::size_t blankLines = 0;
    for (std::size_t start = 0; start < text.size();) {
        std::size_t end = text.find('\n', start);
        end = end == std::string_view::npos ? text.size() : end;
        std::string_view line = text.substr(start, end - start);
        start = end + 1;
        if (line.ends_with('\r'))
            line.remove_suffix(1);

        const Indentation indentation = indentationOf(line);
        const std::string_view content = line.substr(indentation.length);
        if (content.empty()) {
            ++blankLines;
            continue;
        }
        const std::size_t marker = listMarkerLength(content);
        if (marker == 0 && indentation.columns >= textColumn) {
            std::string& noteText = outline.back().text;
            noteText.append(blankLines + 1, '\n');
            noteText += withoutEscape(withoutColumns(line, textColumn), textLineNeedsEscape);
            blankLines = 0;
            continue;
        }
        blankLines = 0;
        while (!levels.empty() && levels.back().indent >= indentation.columns)
            levels.pop_back();
        const std::size_t depth = levels.empty() ? 0 : levels.back().depth + 1;
        levels.push_back({indentation.columns, depth});
        std::string_view noteText = content;
        textColumn = kNoColumn;
        if (marker > 0) {
            const std::size_t taken = std::min(marker + 1, content.size());
            noteText = content.substr(taken);
            textColumn = indentation.columns + marker + 1;
        }
        outline.add(depth, std::string(noteText));
    }
    return parsed;
}

} // namespace quillery
