#include "cli/TreeExport.h"

#include "document/Document.h"
#include "storage/JsonWriter.h"

#include <ostream>

namespace quillery::cli {

namespace {

void writeNode(const NotebookNode& node, JsonWriter& json) {
    json.beginObject();
    json.key("identifier");
    json.identifier(node.identifier());
    json.key("text");
    json.string(node.text());
    if (node.imageIdentifier()) {
        json.key("image");
        json.identifier(*node.imageIdentifier());
    }
    if (node.url()) {
        json.key("url");
        json.string(*node.url());
    }
    json.key("children");
    json.beginArray();
    for (const NodePtr& child : node.children())
        writeNode(*child, json);
    json.endArray();
    json.endObject();
}

void writeItem(const Document& document, const NotebookNode& node, std::size_t depth,
               std::ostream& out) {
    std::string indent(2 * depth, ' ');
    out << indent << "- ";
    if (node.imageIdentifier()) {
        std::string key = node.imageIdentifier()->toString();
        if (auto file = document.url(*node.imageIdentifier()))
            out << "[picture " << key << "](<" << file->string() << ">)";
        else
            out << "(picture " << key << ", not in the package)";
        if (!node.text().empty())
            out << ' ';
    }
    std::string_view text = node.text();
    for (std::size_t start = 0;;) {
        std::size_t end = text.find('\n', start);
        out << text.substr(start, end == std::string_view::npos ? end : end - start);
        if (end == std::string_view::npos)
            break;
        out << '\n' << indent << "  ";
        start = end + 1;
    }
    if (node.url() && node.text() != *node.url())
        out << " <" << *node.url() << ">";
    out << '\n';
    for (const NodePtr& child : node.children())
        writeItem(document, *child, depth + 1, out);
}

} // namespace

void writeTreeJson(const Document& document, std::ostream& out) {
    std::string text;
    JsonWriter json(text);
    json.beginObject();
    json.key("root");
    writeNode(*document.rootNode(), json);
    json.key("deleted");
    writeNode(*document.deletedRootNode(), json);
    json.endObject();
    out << text << '\n';
}

void writeTreeMarkdown(const Document& document, std::ostream& out) {
    for (const NodePtr& note : document.rootNode()->children())
        writeItem(document, *note, 0, out);
}

} // namespace quillery::cli
