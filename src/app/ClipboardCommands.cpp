#include "app/ClipboardCommands.h"

#include "app/DocumentActions.h"
#include "app/DocumentWindow.h"
#include "columns/NoteColumn.h"
#include "columns/NoteMimeData.h"
#include "document/Document.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>

namespace quillery {

ClipboardCommands::ClipboardCommands(DocumentWindow& window, const DocumentActions& actions)
    : QObject(&window)
    , m_window(window)
    , m_actions(actions) {
    connect(actions.copy, &QAction::triggered, this, [this] { copy(false); });
    connect(actions.cut, &QAction::triggered, this, [this] { copy(true); });
    connect(actions.paste, &QAction::triggered, this, &ClipboardCommands::paste);
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this,
            [this] { updateActions(m_browsing); });
}

void ClipboardCommands::updateActions(bool browsing) {
    m_browsing = browsing;
    NoteColumn* column = browsing ? m_window.focusedColumn() : nullptr;
    // The selection moves without the window hearing of it, so a focused column is enough; with
    // nothing selected Copy and Cut do nothing.
    m_actions.copy->setEnabled(column != nullptr);
    m_actions.cut->setEnabled(column != nullptr);
    m_actions.paste->setEnabled(column && column->canPaste());
}

void ClipboardCommands::copy(bool cut) {
    NoteColumn* column = m_window.focusedColumn();
    const NodePtr note = column ? column->selectedNode() : nullptr;
    if (!note || column->temporaryNode() || !column->isColumnEnabled())
        return;
    Document& document = m_window.document();
    QGuiApplication::clipboard()->setMimeData(new NoteMimeData(document, *note, cut));
    if (cut)
        document.userDidDelete(*note, "Cut");
}

void ClipboardCommands::paste() {
    if (NoteColumn* column = m_window.focusedColumn())
        column->paste();
}

} // namespace quillery
