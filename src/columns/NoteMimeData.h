#pragma once

#include "columns/TransferredNotes.h"

#include <QHash>
#include <QMimeData>

namespace quillery {

class Document;
class NotebookNode;

// A note with its subtree as the clipboard and drags carry it: the note's identifier and its
// notebook (so a drag within the notebook moves it), the notes themselves (kNotesMimeType, so a
// paste or a drop anywhere copies them with their pictures), "text/plain" as an indented outline
// and "text/html" as nested lists with the pictures inline as data: addresses, so that other
// programs get something useful.
//
// The notes are taken when it is made; the pictures are read and the other forms written only
// when a reader first asks for them, so a drag starts at once and needs nothing of the document
// afterwards.
class NoteMimeData : public QMimeData {
public:
    // `cut` marks the notes of a Cut (see TransferredNotes::cutNote).
    NoteMimeData(const Document& document, const NotebookNode& note, bool cut = false);

    QStringList formats() const override;

protected:
    QVariant retrieveData(const QString& type, QMetaType preferredType) const override;

private:
    QByteArray made(const QString& type) const;

    TransferredNotes m_notes;
    mutable QHash<QString, QByteArray> m_made;
};

} // namespace quillery
