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

// Decides and performs drops onto one column: notes dragged from any column, pictures, picture
// files and addresses from other applications. Every accepted drop is one document edit; the
// column changes only when the document's notification arrives.
class ColumnDropHandler {
public:
    explicit ColumnDropHandler(Document& document);

    // The drag payload for a note of this document's columns: the note's identifier and the
    // notebook it belongs to (only that one note travels).
    QMimeData* mimeDataForNode(const NotebookNode& node) const;

    // Qt::MoveAction for a note that may go there, Qt::CopyAction for pictures and addresses,
    // Qt::IgnoreAction when the drop is refused (always for a note from another notebook).
    Qt::DropAction validateDrop(const NodePtr& parentNote, const QMimeData& data, int row,
                                DropPosition position) const;

    struct Outcome {
        bool accepted = false;
        // A note made from a dropped web address, to be opened in the editor on the next turn.
        NodePtr noteToEdit;
    };
    Outcome acceptDrop(const NodePtr& parentNote, const QMimeData& data, int row,
                       DropPosition position);

    // Edit > Paste into a column: a picture or an address on the clipboard does what dropping it
    // after the column's last row does; so does a lone web address copied as plain text. Notes on
    // the clipboard and other plain text are not pasted.
    bool canPaste(const NodePtr& parentNote, const QMimeData& data) const;
    Outcome paste(const NodePtr& parentNote, const QMimeData& data);

private:
    // Stores the picture and adds a picture note for it to the parent at the index.
    void addNode(const NotebookNode& toParent, const QImage& image, const QByteArray& originalData,
                 std::optional<std::string> url, const QString& fileExtension, long at);

    Document& m_document;
};

} // namespace quillery
