#include "navigation/ColumnEdge.h"

#include <QEvent>
#include <QMouseEvent>

namespace quillery {

ColumnEdge::ColumnEdge(QWidget* column)
    : QWidget(column) {
    setObjectName(QStringLiteral("columnEdge"));
    setCursor(Qt::SplitHCursor);
    setToolTip(tr("Drag to change the column's width; double-click to fit its notes"));
    column->installEventFilter(this);
    follow();
}

int ColumnEdge::gripWidth() {
    return 6;
}

bool ColumnEdge::eventFilter(QObject* watched, QEvent* event) {
    // Children added later are stacked above it; it must stay on top to be grabbed.
    if (watched == parent() &&
        (event->type() == QEvent::Resize || event->type() == QEvent::ChildAdded)) {
        follow();
    }
    return QWidget::eventFilter(watched, event);
}

void ColumnEdge::follow() {
    const QWidget* column = parentWidget();
    setGeometry(column->width() - gripWidth(), 0, gripWidth(), column->height());
    raise();
}

void ColumnEdge::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    m_startX = qRound(event->globalPosition().x());
    m_startWidth = parentWidget()->width();
}

void ColumnEdge::mouseMoveEvent(QMouseEvent* event) {
    if (m_startWidth < 0)
        return;
    emit widthRequested(m_startWidth + qRound(event->globalPosition().x()) - m_startX);
}

void ColumnEdge::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        m_startWidth = -1;
}

void ColumnEdge::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    m_startWidth = -1;
    emit fitRequested();
}

} // namespace quillery
