#pragma once

#include "outline/OutlineWriter.h"

namespace quillery {

// The indented formats: every note a list item, two spaces per level (at most
// outline_syntax::kMaxIndentedDepth levels), further lines of a note under its first at the
// column of its text.
//  markdown: "- " items; every line that markdown would read as something else than more text
//            (see outline_syntax::markdownLineNeedsEscape) gets a backslash before it.
//  text:     the same "- " items for the clipboard and plain files: the first line as it is,
//            further lines that start like a list item get a backslash, lines of spaces are
//            written empty and empty last lines left out (a reader of indented text drops them).
// With `escapeControls`, control characters are written visibly (terminal_text).
class IndentedOutlineWriter : public OutlineWriter {
public:
    enum class Flavour { markdown, text };
    IndentedOutlineWriter(std::ostream& out, Flavour flavour, bool escapeControls);

    void note(std::size_t depth, const NoteView& view) override;
    void finish() override;

private:
    void appendLine(std::string_view prefix, std::string_view line);

    OutputBuffer m_out;
    Flavour m_flavour;
    bool m_escapeControls;
};

} // namespace quillery
