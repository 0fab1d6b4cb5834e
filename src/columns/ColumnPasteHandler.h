#pragma once

#include "columns/ColumnDropHandler.h"

#include <cstddef>

class QMimeData;

namespace quillery {

class Document;

// Decides and performs Edit > Paste into a column, at a place among the column's notes. In this
// order: notes copied or cut in any notebook (TransferredNotes; a Cut's note comes back into its
// own notebook, anything else is copied with new identifiers); a picture or a picture file; a web
// address, also one copied as plain text; and other plain text: several lines are an outline
// (readIndentedText), a single line one note with that line as it is, list marker and all. Every
// paste is one undo step named "Paste".
class ColumnPasteHandler {
public:
    explicit ColumnPasteHandler(Document& document);

    // Looks only at the types on offer, so it is cheap enough to run on every focus change.
    static bool canPaste(const QMimeData& data);
    // `at` may be past the last child (the end).
    ColumnDropHandler::Outcome paste(const NodePtr& parentNote, std::size_t at,
                                     const QMimeData& data);

private:
    NodePtr pasteText(const NotebookNode& parent, std::size_t at, const QString& text);

    Document& m_document;
    ColumnDropHandler m_drops;
};

} // namespace quillery
