#include "outline/OpmlReader.h"

#include <pugixml.hpp>
#include <simdjson.h>

namespace quillery {

namespace {

bool isUtf8(std::string_view text) {
    return simdjson::validate_utf8(text.data(), text.size());
}

} // namespace

ParsedOutline readOpml(std::string_view bytes) {
    pugi::xml_document document;
    // The default flags: no document type definition is read, so no entity is ever expanded.
    const pugi::xml_parse_result result = document.load_buffer(bytes.data(), bytes.size());
    auto lineOf = [&](std::ptrdiff_t offset) {
        return outline_import::lineAt(bytes, offset < 0 ? 0 : static_cast<std::size_t>(offset));
    };
    if (!result)
        return outline_import::failure(lineOf(result.offset),
                                       std::string("the XML is not well-formed: ") +
                                           result.description());
    const pugi::xml_node opml = document.child("opml");
    if (!opml)
        return outline_import::failure(1, "this is not OPML: there is no <opml> element");
    const pugi::xml_node body = opml.child("body");
    if (!body)
        return outline_import::failure(lineOf(opml.offset_debug()),
                                       "this OPML has no <body> element");

    ParsedOutline parsed;
    std::size_t depth = 0;
    for (pugi::xml_node node = body.first_child(); node;) {
        bool descend = false;
        if (node.type() == pugi::node_element && std::string_view(node.name()) == "outline") {
            const std::string_view text = node.attribute("text").value();
            pugi::xml_attribute url = node.attribute("url");
            if (!url)
                url = node.attribute("htmlUrl");
            const std::string_view note = node.attribute("_note").value();
            if (!isUtf8(text) || !isUtf8(url.value()) || !isUtf8(note))
                return outline_import::failure(lineOf(node.offset_debug()),
                                               "this outline's text is not UTF-8");
            std::optional<std::string> address;
            if (url)
                address = url.value();
            parsed.outline.add(depth, std::string(text), std::move(address));
            if (!note.empty())
                parsed.outline.add(depth + 1, std::string(note));
            descend = static_cast<bool>(node.first_child());
        }
        if (descend) {
            node = node.first_child();
            ++depth;
            continue;
        }
        while (node != body && !node.next_sibling()) {
            node = node.parent();
            if (node != body)
                --depth;
        }
        if (node == body)
            break;
        node = node.next_sibling();
    }
    return parsed;
}

} // namespace quillery
