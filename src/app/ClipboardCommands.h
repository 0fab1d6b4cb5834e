#pragma once

#include <QObject>

namespace quillery {

class DocumentWindow;
struct DocumentActions;

// Edit > Copy, Cut and Paste (also in the Note menu and the rows' context menu), acting on the
// column that holds the window's keyboard focus. Copy puts the selected note with its subtree on
// the clipboard (NoteMimeData); Cut does the same and moves the note to the deleted notes, one
// undo step named "Cut", from where a paste into this notebook brings the note itself back;
// Paste hands the clipboard to the column (ColumnPasteHandler). A text field with the focus (the
// note editor, the find bar) takes the keys for itself before these shortcuts are considered.
class ClipboardCommands : public QObject {
    Q_OBJECT

public:
    // The window owns the commands.
    ClipboardCommands(DocumentWindow& window, const DocumentActions& actions);

    // Follows the focus, the clipboard and whether the columns take commands (not while a panel
    // is open).
    void updateActions(bool browsing);

private:
    void copy(bool cut);
    void paste();

    DocumentWindow& m_window;
    const DocumentActions& m_actions;
    bool m_browsing = true;
};

} // namespace quillery
