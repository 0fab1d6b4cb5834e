#pragma once

#include "model/NotebookNode.h"

#include <QByteArray>
#include <QImage>
#include <QString>
#include <Qt>

#include <optional>
#include <string>

class QMimeData;

namespace quillery {

class Document;

// The MIME type under which a dragged note's identifier travels between columns.
inline constexpr char kNodeDragAndDropDataType[] = "application/x-quillery-NodeDragAndDropDataType";
// The MIME type under which the dragged note's notebook (its document's session identifier)
// travels with it.
inline constexpr char kNotebookDragAndDropDataType[] = "application/x-quillery-notebook";

// Where a drop lands in a column: on a row (into that note) or above a row (between rows; the
// row may equal the row count, meaning after the last row).
enum class DropPosition { On, Above };

// Decides and performs drops onto one column: notes dragged from any column (moved within their
// notebook, copied with their pictures from another notebook), pictures, picture files and
// addresses from other applications. Every accepted drop is one undo step; the column changes
// only when the document's notification arrives.
class ColumnDropHandler {
public:
    explicit ColumnDropHandler(Document& document);

    // The drag payload for a note of this document's columns (a NoteMimeData).
    QMimeData* mimeDataForNode(const NotebookNode& node) const;

    // Qt::MoveAction for a note of this notebook that may go there, Qt::CopyAction for notes of
    // another notebook, pictures and addresses, Qt::IgnoreAction when the drop is refused.
    Qt::DropAction validateDrop(const NodePtr& parentNote, const QMimeData& data, int row,
                                DropPosition position) const;

    struct Outcome {
        bool accepted = false;
        // The note the drop added or moved (the first of several).
        NodePtr added;
        // A note made from a dropped web address, to be opened in the editor on the next turn.
        NodePtr noteToEdit;
    };
    Outcome acceptDrop(const NodePtr& parentNote, const QMimeData& data, int row,
                       DropPosition position);
    // Edit > Paste of a picture or an address: what a drop above the row does, except that an
    // address lands at the row as well, and the step is named "Paste".
    Outcome pasteAt(const NodePtr& parentNote, const QMimeData& data, int row);

private:
    Outcome accept(const NodePtr& parentNote, const QMimeData& data, int row, DropPosition position,
                   bool pasting);
    // Adds the note to the parent at the index as one undo step with the name.
    NodePtr addNote(const NodePtr& note, const NotebookNode& toParent, long at,
                    const char* actionName);
    // Stores the picture and adds a picture note for it.
    NodePtr addPicture(const NotebookNode& toParent, const QImage& image,
                       const QByteArray& originalData, std::optional<std::string> url,
                       const QString& fileExtension, long at, const char* actionName);

    Document& m_document;
};

} // namespace quillery
