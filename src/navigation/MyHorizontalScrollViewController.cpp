#include "navigation/MyHorizontalScrollViewController.h"

#include "navigation/MySplitViewController.h"

#include <QCoreApplication>
#include <QEvent>
#include <QScrollBar>

namespace quillery {

MyHorizontalScrollViewController::MyHorizontalScrollViewController(Document* document,
                                                                   QWidget* parent)
    : QScrollArea(parent)
    , m_splitViewController(new MySplitViewController(document)) {
    setObjectName(QStringLiteral("MyHorizontalScrollViewController"));
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    // A resizable content widget follows the visible height and is never narrower than the
    // visible area; its fixed-width columns make it wider when they need to.
    setWidgetResizable(true);
    setWidget(m_splitViewController);
    m_splitViewController->setDelegate(this);
}

void MyHorizontalScrollViewController::mySplitViewControllerWantsToScrollToRect(
    MySplitViewController&, const QRect& rect) {
    // Items added on this turn widen the row only once its layout request is handled; the
    // scroll range must include them first.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    // The scroll bar keeps the value within the row, so a rectangle near the right end shows
    // as far as the row reaches.
    horizontalScrollBar()->setValue(rect.x());
}

} // namespace quillery
