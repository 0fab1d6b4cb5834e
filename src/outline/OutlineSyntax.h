#pragma once

#include "outline/NoteView.h"

#include <cstddef>
#include <string>
#include <string_view>

// The line rules that the markdown and indented text formats share between writing and reading,
// so that what a writer escapes is exactly what a reader takes back.
namespace quillery::outline_syntax {

// Deeper notes are written at this depth in the indented formats (markdown, text), so that the
// indentation of a very deep tree stays bounded.
inline constexpr std::size_t kMaxIndentedDepth = 64;

// What the text formats (markdown, text, OPML) write for a note: a picture as a link to its
// file ("[picture KEY](<FILE>)", or "(picture KEY, not in the package)" without a file) before the
// text, and, with `withUrl`, the note's web address after it (" <URL>") unless it is the text.
std::string noteLine(const NoteView& note, bool withUrl);

// Length of the list marker that starts the line ("-", "*", "+", or 1 to 9 digits and "." or
// ")") when a space, a tab or the end of the line follows it; 0 when the line starts otherwise.
std::size_t listMarkerLength(std::string_view line);

// Markdown: whether a line of a note's text would be read as something else than more text of
// its list item (a list item, a heading, a quote, a fence, a rule, a blank or indented line...),
// or begins with backslashes before such a line. The writer puts one backslash before it.
bool markdownLineNeedsEscape(std::string_view line);
// The same for the first line of a note, which starts its paragraph and so could also start a
// link reference definition ("[label]: target", the label perhaps over several lines): a first
// line starting with "[" is escaped too unless its label ends on it with something else than
// ":" after it (a link: "[text](target)").
bool markdownFirstLineNeedsEscape(std::string_view line);

// Indented text: whether a further line of a note would be read as a new note (a list marker
// after spaces, tabs and backslashes). The writer puts one backslash before it.
bool textLineNeedsEscape(std::string_view line);

// The reader's side: the line without the one backslash that the rule says a writer put there.
std::string_view withoutEscape(std::string_view line, bool (*needsEscape)(std::string_view));

// Columns of leading spaces and tabs (a tab goes on to the next multiple of 4) and their length.
struct Indentation {
    std::size_t columns = 0;
    std::size_t length = 0;
};
Indentation indentationOf(std::string_view line);
// The line without leading spaces and tabs up to that many columns.
std::string_view withoutColumns(std::string_view line, std::size_t columns);

} // namespace quillery::outline_syntax
