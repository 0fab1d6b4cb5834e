#pragma once

#include "outline/NoteView.h"

#include <cstddef>
#include <ostream>
#include <string>

namespace quillery {

// Collects output and hands it to a stream in pieces, so that a writer never holds more than a
// piece of its output however large the notebook.
class OutputBuffer {
public:
    explicit OutputBuffer(std::ostream& out)
        : m_out(out) {}
    ~OutputBuffer() { flush(); }
    OutputBuffer(const OutputBuffer&) = delete;
    OutputBuffer& operator=(const OutputBuffer&) = delete;

    // Writers append here and call maybeFlush() after each note.
    std::string& text() { return m_text; }
    void maybeFlush() {
        if (m_text.size() >= kPieceSize)
            flush();
    }
    void flush() {
        m_out.write(m_text.data(), static_cast<std::streamsize>(m_text.size()));
        m_text.clear();
    }

private:
    static constexpr std::size_t kPieceSize = 1 << 16;
    std::ostream& m_out;
    std::string m_text;
};

// Writes notes handed to it in tree order: each note comes with its depth (0 for the notes at the
// top of what is written), after its parent and before its next sibling. Writers keep only the
// depths of the open notes, never the notes, so output streams out as the walk goes.
class OutlineWriter {
public:
    virtual ~OutlineWriter() = default;
    virtual void note(std::size_t depth, const NoteView& view) = 0;
    // Closes what is open; called once after the last note.
    virtual void finish() = 0;
};

} // namespace quillery
