#include "columns/NoteListView.h"

#include "columns/ColumnCommand.h"
#include "columns/ColumnListStyle.h"
#include "columns/NodeListModel.h"
#include "columns/PictureDecoder.h"

#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>
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
    auto* style = new ColumnListStyle;
    style->setParent(this);
    setStyle(style);
    // A widget's style reaches none of its children; the scroll bar lies over the rows only when
    // its own style says so.
    verticalScrollBar()->setStyle(style);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
    // Pictures are drawn once decoded; their rows' heights are known before.
    connect(&PictureDecoder::instance(), &PictureDecoder::decoded, viewport(),
            qOverload<>(&QWidget::update));
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

void NoteListView::mousePressEvent(QMouseEvent* event) {
    m_pressedRow = QPersistentModelIndex();
    if (event->button() == Qt::LeftButton) {
        m_pressedRow = indexAt(event->position().toPoint());
        m_pressPosition = event->position().toPoint();
    }
    const QPersistentModelIndex current = currentIndex();
    QListView::mousePressEvent(event);
    // The list makes the pressed row current even when it does not select it; a current row
    // that is not the selected one would move the selection if it were removed (as a dragged
    // row is), and Up and Down would start from it.
    if (m_pressedRow.isValid() && selectionModel() && currentIndex() != current)
        selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
}

void NoteListView::mouseMoveEvent(QMouseEvent* event) {
    if (!m_pressedRow.isValid() || !(event->buttons() & Qt::LeftButton)) {
        QListView::mouseMoveEvent(event);
        return;
    }
    // The list's own handling would select the rows the pointer passes; a press on a row only
    // ever selects that row, on release, or drags it.
    if ((event->position().toPoint() - m_pressPosition).manhattanLength() <
            QApplication::startDragDistance() ||
        !dragEnabled()) {
        return;
    }
    const QModelIndex row = m_pressedRow;
    m_pressedRow = QPersistentModelIndex();
    dragRow(row);
}

void NoteListView::mouseReleaseEvent(QMouseEvent* event) {
    const QPersistentModelIndex clicked =
        m_pressedRow.isValid() && indexAt(event->position().toPoint()) == m_pressedRow
            ? m_pressedRow
            : QPersistentModelIndex();
    QListView::mouseReleaseEvent(event);
    m_pressedRow = QPersistentModelIndex();
    if (clicked.isValid() && selectionModel())
        selectionModel()->setCurrentIndex(clicked, QItemSelectionModel::NoUpdate);
}

QItemSelectionModel::SelectionFlags NoteListView::selectionCommand(const QModelIndex& index,
                                                                   const QEvent* event) const {
    if (event && event->type() == QEvent::MouseButtonPress && index.isValid() &&
        static_cast<const QMouseEvent*>(event)->button() == Qt::LeftButton) {
        return QItemSelectionModel::NoUpdate;
    }
    if (event && event->type() == QEvent::MouseButtonRelease) {
        // Only a release over the row the press went down on, with no drag between, selects.
        if (index.isValid() && index == m_pressedRow)
            return QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
        return QItemSelectionModel::NoUpdate;
    }
    return QListView::selectionCommand(index, event);
}

void NoteListView::dragRow(const QModelIndex& index) {
    QMimeData* payload = model()->mimeData({index});
    if (!payload)
        return;
    // Parented to the list, which the drag must not outlive; Qt lets go of it after the drag.
    auto* drag = new QDrag(this);
    drag->setMimeData(payload);
    const QRect row = visualRect(index);
    drag->setPixmap(rowPicture(index, row.size()));
    drag->setHotSpot(m_pressPosition - row.topLeft());
    if (m_dragRunner)
        m_dragRunner(*drag);
    else
        drag->exec(model()->supportedDragActions(), defaultDropAction());
}

QPixmap NoteListView::rowPicture(const QModelIndex& index, QSize size) const {
    const qreal ratio = devicePixelRatioF();
    QPixmap picture(size * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    // The row as it looks unselected, lifted off the list: a little see-through, with a frame.
    painter.setOpacity(0.85);
    painter.fillRect(QRect(QPoint(), size), palette().color(QPalette::Base));
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = QRect(QPoint(), size);
    option.state &= ~(QStyle::State_Selected | QStyle::State_HasFocus);
    itemDelegate()->paint(&painter, option, index);
    painter.setOpacity(1);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(QRect(QPoint(), size).adjusted(0, 0, -1, -1));
    return picture;
}

void NoteListView::changeEvent(QEvent* event) {
    QListView::changeEvent(event);
    // The selection is drawn in the accent only while the window is active.
    if (event->type() == QEvent::ActivationChange)
        viewport()->update();
}

void NoteListView::resizeEvent(QResizeEvent* event) {
    QListView::resizeEvent(event);
    const int width = viewport()->width();
    if (width != m_lastWidth) {
        m_lastWidth = width;
        emit widthChanged(width);
        // A list lays its rows out again only when its height changes; the rows' heights follow
        // the width.
        scheduleDelayedItemsLayout();
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
