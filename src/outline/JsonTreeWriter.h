#pragma once

#include "outline/OutlineWriter.h"
#include "storage/JsonWriter.h"

namespace quillery {

// Notes as JSON: NODE is {"identifier", "text", "children": [NODE...]} plus "image" (the
// picture's key) and "url" when the note has them. Compact, or pretty with the indentation
// capped (at outline_syntax::kMaxIndentedDepth levels, half as many notes).
class JsonTreeWriter : public OutlineWriter {
public:
    JsonTreeWriter(std::ostream& out, bool pretty);

    void note(std::size_t depth, const NoteView& view) override;
    // Closes the notes of one walk, so that another can follow under another key.
    void closeNotes();
    void finish() override;

    // Around walks: {"root": NODE, "deleted": NODE}, or [NODE...].
    void beginObject() { m_json.beginObject(); }
    void key(std::string_view name) { m_json.key(name); }
    void endObject() { m_json.endObject(); }
    void beginArray() { m_json.beginArray(); }
    void endArray() { m_json.endArray(); }

private:
    void closeNote();

    OutputBuffer m_out;
    JsonWriter m_json;
    std::size_t m_open = 0;
};

} // namespace quillery
