#include "app/NoteCommands.h"

#include "app/AppCommands.h"
#include "app/DeletedNotesDialog.h"
#include "app/DocumentActions.h"
#include "app/DocumentWindow.h"
#include "columns/NoteColumn.h"
#include "columns/NoteListView.h"
#include "navigation/ColumnRow.h"
#include "navigation/MoveSelectedNote.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QMenu>

namespace quillery {

NoteCommands::NoteCommands(DocumentWindow& window, const DocumentActions& actions)
    : QObject(&window)
    , m_window(window)
    , m_actions(actions) {
    connect(actions.deleteNote, &QAction::triggered, this, [this] {
        if (NoteColumn* column = activeColumn())
            column->deleteSelectedNote();
    });
    const std::pair<QAction*, NoteMoveDirection> moves[] = {
        {actions.moveUp, NoteMoveDirection::Up},
        {actions.moveDown, NoteMoveDirection::Down},
        {actions.moveOut, NoteMoveDirection::Out},
        {actions.moveIn, NoteMoveDirection::In},
    };
    for (const auto& [action, direction] : moves) {
        connect(action, &QAction::triggered, this, [this, direction] {
            if (NoteColumn* column = activeColumn())
                moveSelectedNote(*m_window.columnRow(), *column, direction);
        });
    }
    connect(actions.deletedNotes, &QAction::triggered, this, &NoteCommands::showDeletedNotes);
    // Context menu events that no widget of a column takes travel up to the window.
    window.installEventFilter(this);
}

void NoteCommands::setBrowsing(bool browsing) {
    for (QAction* action : {m_actions.deleteNote, m_actions.moveUp, m_actions.moveDown,
                            m_actions.moveOut, m_actions.moveIn}) {
        action->setEnabled(browsing);
    }
}

void NoteCommands::showDeletedNotes() {
    if (!m_deletedNotes)
        m_deletedNotes = new DeletedNotesDialog(m_window);
    else
        m_deletedNotes->reload();
    m_deletedNotes->show();
    m_deletedNotes->raise();
    m_deletedNotes->activateWindow();
}

void NoteCommands::documentChanged() {
    if (m_deletedNotes && m_deletedNotes->isVisible())
        m_deletedNotes->scheduleReload();
}

bool NoteCommands::eventFilter(QObject* watched, QEvent* event) {
    if (watched != &m_window || event->type() != QEvent::ContextMenu)
        return QObject::eventFilter(watched, event);
    auto* request = static_cast<QContextMenuEvent*>(event);
    QWidget* target = request->reason() == QContextMenuEvent::Keyboard
                          ? m_window.focusWidget()
                          : m_window.childAt(m_window.mapFromGlobal(request->globalPos()));
    NoteColumn* column = NoteColumn::containing(target);
    if (!column || !column->isColumnEnabled())
        return false;
    QPoint position = request->globalPos();
    // From the keyboard the menu opens at the selected row rather than where the pointer is.
    if (request->reason() == QContextMenuEvent::Keyboard && column->selectedRow() >= 0) {
        NoteListView* view = column->listView();
        const QRect row = view->visualRect(view->model()->index(column->selectedRow(), 0));
        position = view->viewport()->mapToGlobal(row.bottomLeft());
    }
    showContextMenu(*column, position);
    return true;
}

NoteColumn* NoteCommands::activeColumn() const {
    ColumnRow* row = m_window.columnRow();
    return row ? row->activeColumn() : nullptr;
}

void NoteCommands::showContextMenu(NoteColumn& column, const QPoint& globalPosition) {
    delete m_contextMenu;
    m_contextMenu = new QMenu(&m_window);
    m_contextMenu->setObjectName(QStringLiteral("noteContextMenu"));
    m_contextMenu->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_contextMenu, &QObject::destroyed, this, [this] { m_contextMenu = nullptr; });
    column.setFocus(Qt::PopupFocusReason);
    m_contextMenu->addActions({m_actions.editNote, m_actions.addNoteBeneath});
    m_contextMenu->addSeparator();
    m_contextMenu->addActions({m_actions.copy, m_actions.cut, m_actions.paste});
    m_contextMenu->addSeparator();
    m_contextMenu->addAction(m_actions.deleteNote);
    m_contextMenu->popup(globalPosition);
}

} // namespace quillery
