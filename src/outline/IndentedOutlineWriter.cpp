#include "outline/IndentedOutlineWriter.h"

#include "outline/OutlineSyntax.h"
#include "outline/TerminalText.h"

#include <algorithm>
#include <vector>

namespace quillery {

namespace {

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find('\n', start);
        lines.push_back(text.substr(start, end == std::string_view::npos ? end : end - start));
        if (end == std::string_view::npos)
            return lines;
        start = end + 1;
    }
}

bool isBlank(std::string_view line) {
    return line.find_first_not_of(" \t") == std::string_view::npos;
}

} // namespace

IndentedOutlineWriter::IndentedOutlineWriter(std::ostream& out, Flavour flavour,
                                             bool escapeControls)
    : m_out(out)
    , m_flavour(flavour)
    , m_escapeControls(escapeControls) {
}

void IndentedOutlineWriter::appendLine(std::string_view prefix, std::string_view line) {
    std::string& out = m_out.text();
    out += prefix;
    if (m_escapeControls)
        terminal_text::appendShown(out, line);
    else
        out += line;
    out += '\n';
}

void IndentedOutlineWriter::note(std::size_t depth, const NoteView& view) {
    const std::string text = outline_syntax::noteLine(view, true);
    std::vector<std::string_view> lines = linesOf(text);
    const bool markdown = m_flavour == Flavour::markdown;
    if (!markdown)
        while (lines.size() > 1 && isBlank(lines.back()))
            lines.pop_back();

    const std::string indent(2 * std::min(depth, outline_syntax::kMaxIndentedDepth), ' ');
    auto needsEscape =
        markdown ? outline_syntax::markdownLineNeedsEscape : outline_syntax::textLineNeedsEscape;
    // An empty item cannot follow a paragraph in markdown (it would underline it), so there
    // an empty first line is escaped like any other.
    if (!markdown && lines.front().empty())
        appendLine(indent, "-");
    else
        appendLine(indent + (markdown && needsEscape(lines.front()) ? "- \\" : "- "),
                   lines.front());
    const std::string further = indent + "  ";
    for (std::size_t i = 1; i < lines.size(); ++i) {
        if (!markdown && isBlank(lines[i]))
            appendLine({}, {});
        else
            appendLine(needsEscape(lines[i]) ? further + "\\" : further, lines[i]);
    }
    m_out.maybeFlush();
}

void IndentedOutlineWriter::finish() {
    m_out.flush();
}

} // namespace quillery
