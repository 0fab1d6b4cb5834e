#include "outline/IndentedOutlineWriter.h"

#include "outline/OutlineSyntax.h"
#include "outline/TerminalText.h"

#include <algorithm>
#include <vector>

namespace quillery {

namespace {

// The lines of a note as the format's reader will see them: markdown ends a line at "\n", "\r\n"
// or a lone "\r", indented text at "\n" and drops a "\r" before it.
std::vector<std::string_view> linesOf(std::string_view text, bool markdown) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i < text.size() && text[i] != '\n' && !(markdown && text[i] == '\r'))
            continue;
        std::string_view line = text.substr(start, i - start);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        lines.push_back(line);
        if (i + 1 < text.size() && text[i] == '\r' && text[i + 1] == '\n')
            ++i;
        start = i + 1;
    }
    return lines;
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
    const bool markdown = m_flavour == Flavour::markdown;
    std::vector<std::string_view> lines = linesOf(text, markdown);
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
        appendLine(indent + (markdown && outline_syntax::markdownFirstLineNeedsEscape(lines.front())
                                 ? "- \\"
                                 : "- "),
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
