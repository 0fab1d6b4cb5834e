#pragma once

#include "outline/OutlineWriter.h"

namespace quillery {

// OPML 2.0: one `outline` element per note with the note's text in "text" (a picture as a link to
// its file, as in markdown) and its web address in "url"; two spaces per level of indentation,
// no deeper than 32 levels. The head stays empty, so that the
// same notes always give the same file.
class OpmlWriter : public OutlineWriter {
public:
    explicit OpmlWriter(std::ostream& out);

    void note(std::size_t depth, const NoteView& view) override;
    void finish() override;

private:
    void writePending(std::size_t nextDepth);
    void appendIndent(std::size_t depth);

    OutputBuffer m_out;
    bool m_hasPending = false;
    std::size_t m_pendingDepth = 0;
    std::string m_pendingAttributes;
    std::size_t m_open = 0; // outline elements open: the ancestors of the pending note
};

} // namespace quillery
