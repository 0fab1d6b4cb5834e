#include "outline/OutlineExport.h"

#include "document/Document.h"
#include "outline/IndentedOutlineWriter.h"
#include "outline/JsonTreeWriter.h"
#include "outline/NoteWalk.h"
#include "outline/OpmlWriter.h"

#include <memory>

namespace quillery {

namespace {

std::unique_ptr<OutlineWriter> makeWriter(ExportFormat format, const ExportOptions& options,
                                          std::ostream& out) {
    switch (format) {
    case ExportFormat::json:
        return std::make_unique<JsonTreeWriter>(out, options.pretty);
    case ExportFormat::markdown:
        return std::make_unique<IndentedOutlineWriter>(
            out, IndentedOutlineWriter::Flavour::markdown, options.escapeControls);
    case ExportFormat::text:
        return std::make_unique<IndentedOutlineWriter>(out, IndentedOutlineWriter::Flavour::text,
                                                       options.escapeControls);
    case ExportFormat::opml:
        return std::make_unique<OpmlWriter>(out);
    case ExportFormat::html:
        return std::make_unique<HtmlOutlineWriter>(out, options.title, options.pictureSource);
    }
    return nullptr;
}

} // namespace

std::optional<ExportFormat> exportFormatNamed(std::string_view name) {
    if (name == "json")
        return ExportFormat::json;
    if (name == "markdown")
        return ExportFormat::markdown;
    if (name == "opml")
        return ExportFormat::opml;
    if (name == "html")
        return ExportFormat::html;
    if (name == "text")
        return ExportFormat::text;
    return std::nullopt;
}

void exportNotes(const Document& document, const NotebookNode* note, ExportFormat format,
                 const ExportOptions& options, std::ostream& out) {
    if (note) {
        std::unique_ptr<OutlineWriter> writer = makeWriter(format, options, out);
        note_walk::writeNotes(document, *note, true, *writer);
        writer->finish();
        return;
    }
    if (format != ExportFormat::json) {
        std::unique_ptr<OutlineWriter> writer = makeWriter(format, options, out);
        note_walk::writeNotes(document, *document.rootNode(), false, *writer);
        writer->finish();
        return;
    }
    JsonTreeWriter json(out, options.pretty);
    json.beginObject();
    json.key("root");
    note_walk::writeNotes(document, *document.rootNode(), true, json);
    json.closeNotes();
    json.key("deleted");
    note_walk::writeNotes(document, *document.deletedRootNode(), true, json);
    json.closeNotes();
    json.endObject();
    json.finish();
}

void exportOutline(const Outline& outline, ExportFormat format, const ExportOptions& options,
                   std::ostream& out) {
    if (format == ExportFormat::json) {
        JsonTreeWriter json(out, options.pretty);
        json.beginArray();
        note_walk::writeOutline(outline, json);
        json.closeNotes();
        json.endArray();
        json.finish();
        return;
    }
    std::unique_ptr<OutlineWriter> writer = makeWriter(format, options, out);
    note_walk::writeOutline(outline, *writer);
    writer->finish();
}

} // namespace quillery
