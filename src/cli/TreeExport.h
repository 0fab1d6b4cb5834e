#pragma once

#include <iosfwd>

namespace quillery {
class Document;
}

namespace quillery::cli {

// {"root": NODE, "deleted": NODE}, where NODE is {"identifier", "text", "children": [NODE...]}
// plus "image" and "url" when the note has them; pretty-printed, children in order.
void writeTreeJson(const Document& document, std::ostream& out);

// The root's notes as a nested markdown list, two spaces per level. A picture note is a link to
// its file in the package; further lines of a note are indented under it.
void writeTreeMarkdown(const Document& document, std::ostream& out);

} // namespace quillery::cli
