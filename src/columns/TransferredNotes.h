#pragma once

#include "model/Identifier.h"
#include "model/NotebookNode.h"
#include "outline/Outline.h"

#include <QByteArray>

#include <optional>

class QMimeData;

namespace quillery {

class Document;
class NotebookNode;

// The MIME type of notes on the clipboard and in drags: a note with its subtree (texts, web
// addresses, picture bytes) and the notebook it came from.
inline constexpr char kNotesMimeType[] = "application/x-quillery-notes";

// Notes on their way from one place to another, by the clipboard or a drag, within a notebook or
// between notebooks (and processes).
struct TransferredNotes {
    Identifier notebook; // the session identifier of the document they came from
    // Set by Cut: the note it took to the deleted notes, which a paste into the same notebook
    // brings back rather than copies.
    std::optional<Identifier> cutNote;
    Outline outline;

    // The payload under kNotesMimeType. Pictures travel as bytes, read from their files now; one
    // whose file cannot be read travels without bytes and is pasted as "Missing picture".
    QByteArray toBytes() const;
    // None for bytes that are no such payload, whoever wrote them; never reads a file.
    static std::optional<TransferredNotes> fromBytes(const QByteArray& bytes);
    static std::optional<TransferredNotes> in(const QMimeData& data);

    // Adds the notes under the parent from position `at` on (at the end when past the last
    // child) as one undo step with the action's name, and gives the first note placed. A Cut's
    // note that still lies among this notebook's deleted notes is moved back instead, keeping its
    // identifier; anything else becomes new notes with new identifiers.
    NodePtr insert(Document& document, const NotebookNode& parent, std::size_t at,
                   const char* actionName) const;
};

} // namespace quillery
