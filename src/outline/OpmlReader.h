#pragma once

#include "outline/OutlineImport.h"

namespace quillery {

// OPML (2.0, and 1.0 alike): every `outline` element under `body` is a note, its "text" the
// note's text, its "url" (else "htmlUrl") the note's web address, and a "_note" a first child
// note holding that text. Other elements are passed over with what they hold. XML that is not
// well-formed, a file without `opml` or `body`, and text that is not UTF-8 are errors naming the
// line.
ParsedOutline readOpml(std::string_view bytes);

} // namespace quillery
