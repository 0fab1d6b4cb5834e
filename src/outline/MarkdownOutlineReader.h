#pragma once

#include "outline/OutlineImport.h"

namespace quillery {

// A markdown outline, read with md4c: every list item is a note and the items of a list inside
// it its children; a heading is a note, and what follows it up to the next heading of its level
// or higher goes below it (a deeper heading as a child); a paragraph or other block outside the
// lists is a note of its own. A note's text is its markdown as written, not rendered: links,
// emphasis and code stay as they are, the list marker and the item's indentation are taken off,
// and one backslash that the markdown export wrote before a line (see
// outline_syntax::markdownLineNeedsEscape) is taken off. Only text that is not UTF-8 is an error.
ParsedOutline readMarkdownOutline(std::string_view markdown);

} // namespace quillery
