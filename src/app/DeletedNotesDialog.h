#pragma once

#include "model/NotebookNode.h"

#include <QDialog>

class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace quillery {

class DocumentWindow;

// View > Deleted Notes: the window's deleted notes, most recently deleted first, each with the
// path it was deleted from and its children a level further in. Put Back (the button or Return)
// returns the selected note to where it was deleted from, as one undo step of the window.
class DeletedNotesDialog : public QDialog {
    Q_OBJECT

public:
    explicit DeletedNotesDialog(DocumentWindow& window);

    // Shows the deleted notes as they are now, on the next turn of the event loop, once however
    // many changes arrive before it.
    void scheduleReload();
    void reload();

private:
    void putBackSelectedNote();
    QTreeWidgetItem* makeItem(const NotebookNode& note, bool withOrigin) const;
    QString originPath(const NotebookNode& note) const;
    void fillChildren(QTreeWidgetItem* item);
    NodePtr noteOf(const QTreeWidgetItem* item) const;
    void updateButtons();

    DocumentWindow& m_window;
    QTreeWidget* m_list;
    QPushButton* m_putBack;
    bool m_reloadScheduled = false;
};

} // namespace quillery
