#include "navigation/MyScrollView.h"

#include <QWheelEvent>

#include <cstdlib>

namespace quillery {

MyScrollView::MyScrollView(QWidget* parent)
    : QListView(parent) {
}

bool MyScrollView::isSidewaysMotion(QPoint delta) {
    return delta.x() != 0 && std::abs(delta.y()) < std::abs(delta.x());
}

void MyScrollView::wheelEvent(QWheelEvent* event) {
    // Touchpads report pixel deltas; wheels only angle deltas.
    const QPoint delta = event->pixelDelta().isNull() ? event->angleDelta() : event->pixelDelta();
    if (isSidewaysMotion(delta)) {
        // An ignored wheel event travels on to the parent widgets, up to the row's scroll area.
        event->ignore();
        return;
    }
    QListView::wheelEvent(event);
}

} // namespace quillery
