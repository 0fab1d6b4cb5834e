#pragma once

#include "outline/HtmlOutlineWriter.h"
#include "outline/Outline.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

namespace quillery {

class Document;
class NotebookNode;

enum class ExportFormat { json, markdown, opml, html, text };

// "json", "markdown", "opml", "html" or "text".
std::optional<ExportFormat> exportFormatNamed(std::string_view name);

struct ExportOptions {
    bool pretty = false;         // json: indented (the indentation capped) instead of compact
    bool escapeControls = false; // markdown, text: control characters shown as "\x1b"
    std::string title;           // html: the page's title
    HtmlOutlineWriter::PictureSource pictureSource; // html: where pictures are shown from
};

// Writes the notebook's notes, or with `note` that note and its subtree, as the format says
// (docs/import-export.md has the rules), streaming: output goes to the stream as it is made.
// The whole notebook is, in json, {"root": NODE, "deleted": NODE}; in the other formats the
// notes of the top level with everything below them, without the deleted notes.
void exportNotes(const Document& document, const NotebookNode* note, ExportFormat format,
                 const ExportOptions& options, std::ostream& out);

// Writes an outline, for the clipboard: text for "text/plain", html for "text/html". In json it
// is [NODE...] with empty identifiers.
void exportOutline(const Outline& outline, ExportFormat format, const ExportOptions& options,
                   std::ostream& out);

} // namespace quillery
