#include "outline/JsonTreeWriter.h"

#include "outline/OutlineSyntax.h"

namespace quillery {

JsonTreeWriter::JsonTreeWriter(std::ostream& out, bool pretty)
    : m_out(out)
    , m_json(m_out.text()) {
    m_json.setCompact(!pretty);
    m_json.setIndentLimit(outline_syntax::kMaxIndentedDepth);
}

void JsonTreeWriter::closeNote() {
    m_json.endArray();
    m_json.endObject();
    --m_open;
}

void JsonTreeWriter::note(std::size_t depth, const NoteView& view) {
    while (m_open > depth)
        closeNote();
    m_json.beginObject();
    m_json.key("identifier");
    m_json.string(view.identifier);
    m_json.key("text");
    m_json.string(view.text);
    if (view.picture) {
        m_json.key("image");
        m_json.string(view.picture->key);
    }
    if (view.url) {
        m_json.key("url");
        m_json.string(*view.url);
    }
    m_json.key("children");
    m_json.beginArray();
    ++m_open;
    m_out.maybeFlush();
}

void JsonTreeWriter::closeNotes() {
    while (m_open > 0)
        closeNote();
}

void JsonTreeWriter::finish() {
    closeNotes();
    m_out.text() += '\n';
    m_out.flush();
}

} // namespace quillery
