#pragma once

#include "outline/OutlineImport.h"

namespace quillery {

// Plain indented text, as pasted or as the text export writes it: every line that is not blank
// is a note, the lines indented more than it below it are its children. A line may start with a
// list marker ("- ", "* ", "+ ", "1. ", "1) "), which is taken off with one space or tab after
// it. A line without a marker that is indented at least to the text of the note before it, when
// that note had a marker, is a further line of that note (one backslash written before a line
// that starts like a list item is taken off); blank lines between such lines stay in the note,
// other blank lines are dropped. A tab goes on to the next multiple of four columns. Line ends
// may be "\r\n". Only text that is not UTF-8 is an error.
ParsedOutline readIndentedText(std::string_view text);

} // namespace quillery
