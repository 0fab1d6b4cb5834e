#include "columns/NoteListView.h"

#include "columns/ColumnCommand.h"
#include "columns/DropIndicatorStyle.h"
#include "columns/NodeListModel.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QResizeEvent>
#include <QWheelEvent>

#include <cstdlib>

namespace quillery {

NoteListView::NoteListView(QWidget* parent)
    : QListView(parent) {
    setObjectName(QStringLiteral("listView"));
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setUniformItemSizes(false);
    // Rows are laid out a batch per event-loop turn, so a huge column shows its first screen
    // without waiting for the rest.
    setLayoutMode(QListView::Batched);
    setBatchSize(64);
    setResizeMode(QListView::Adjust);
    setFrameShape(QFrame::NoFrame);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    auto* style = new DropIndicatorStyle;
    style->setParent(this);
    setStyle(style);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
}

int NoteListView::selectedRow() const {
    if (!selectionModel())
        return -1;
    const QModelIndexList rows = selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void NoteListView::keyPressEvent(QKeyEvent* event) {
    const ColumnCommand command = columnCommandForKey(*event);
    const int rows = model() ? model()->rowCount() : 0;
    const int selected = selectedRow();
    bool forColumn = false;
    switch (command) {
    case ColumnCommand::None:
        break;
    case ColumnCommand::MoveUp:
        forColumn = selected == 0;
        break;
    case ColumnCommand::MoveDown:
        forColumn = selected == rows - 1 || rows == 0;
        break;
    default:
        forColumn = true;
        break;
    }
    if (forColumn) {
        // Ignored key events travel on to the parent widgets, the column among them.
        event->ignore();
        return;
    }
    if (command == ColumnCommand::MoveUp || command == ColumnCommand::MoveDown) {
        // Ctrl+P and Ctrl+N step through the rows exactly like Up and Down.
        QKeyEvent arrow(QEvent::KeyPress,
                        command == ColumnCommand::MoveUp ? Qt::Key_Up : Qt::Key_Down,
                        Qt::NoModifier);
        QListView::keyPressEvent(&arrow);
        event->setAccepted(arrow.isAccepted());
        return;
    }
    QListView::keyPressEvent(event);
}

void NoteListView::resizeEvent(QResizeEvent* event) {
    QListView::resizeEvent(event);
    const int width = viewport()->width();
    if (width != m_lastWidth) {
        m_lastWidth = width;
        emit widthChanged(width);
    }
}

bool NoteListView::isSidewaysMotion(QPoint delta) {
    return delta.x() != 0 && std::abs(delta.y()) < std::abs(delta.x());
}

void NoteListView::wheelEvent(QWheelEvent* event) {
    // Touchpads report pixel deltas; wheels only angle deltas.
    const QPoint delta = event->pixelDelta().isNull() ? event->angleDelta() : event->pixelDelta();
    if (isSidewaysMotion(delta)) {
        // An ignored wheel event travels on to the parent widgets, up to the row's scroll area.
        event->ignore();
        return;
    }
    QListView::wheelEvent(event);
}

void NoteListView::dragMoveEvent(QDragMoveEvent* event) {
    QListView::dragMoveEvent(event);
    const bool wasAccepted = m_dropAccepted;
    m_dropAccepted = event->isAccepted();
    if (m_dropAccepted)
        chooseDropAction(event);
    else if (wasAccepted)
        viewport()->update();
}

void NoteListView::dropEvent(QDropEvent* event) {
    chooseDropAction(event);
    QListView::dropEvent(event);
}

void NoteListView::chooseDropAction(QDropEvent* event) const {
    const auto* rows = qobject_cast<const NodeListModel*>(model());
    if (!rows || !event->mimeData())
        return;
    const QModelIndex index = indexAt(event->position().toPoint());
    int row = -1;
    QModelIndex parent;
    switch (dropIndicatorPosition()) {
    case QAbstractItemView::OnItem:
        parent = index;
        break;
    case QAbstractItemView::AboveItem:
        row = index.row();
        break;
    case QAbstractItemView::BelowItem:
        row = index.row() + 1;
        break;
    case QAbstractItemView::OnViewport:
        break;
    }
    const Qt::DropAction action = rows->dropAction(*event->mimeData(), row, parent);
    if (action != Qt::IgnoreAction && (event->possibleActions() & action))
        event->setDropAction(action);
}

} // namespace quillery
