#pragma once

#include "app/DeletedNotesDialog.h"

#include <QObject>
#include <QPointer>

class QMenu;

namespace quillery {

class DocumentWindow;
class NoteColumn;
struct DocumentActions;

// The Note menu's commands that act on the selected note of the window's active column (delete,
// the keyboard moves; copy, cut and paste are ClipboardCommands), the context menu of a column's
// rows, and View > Deleted Notes. The window owns it.
class NoteCommands : public QObject {
    Q_OBJECT

public:
    NoteCommands(DocumentWindow& window, const DocumentActions& actions);

    // The commands wait while a panel is shown, as the columns do.
    void setBrowsing(bool browsing);
    // View > Deleted Notes, made the first time it is asked for.
    void showDeletedNotes();
    // The window's document changed (or was replaced): the deleted notes follow.
    void documentChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    NoteColumn* activeColumn() const;
    void showContextMenu(NoteColumn& column, const QPoint& globalPosition);

    DocumentWindow& m_window;
    const DocumentActions& m_actions;
    QMenu* m_contextMenu = nullptr;
    QPointer<DeletedNotesDialog> m_deletedNotes;
};

} // namespace quillery
