#include "navigation/ColumnScrollArea.h"

#include "navigation/ColumnRow.h"

#include <QCoreApplication>
#include <QEvent>
#include <QScrollBar>

namespace quillery {

ColumnScrollArea::ColumnScrollArea(Document* document, QWidget* parent)
    : QScrollArea(parent)
    , m_row(new ColumnRow(document)) {
    setObjectName(QStringLiteral("ColumnScrollArea"));
    setAccessibleName(tr("Notebook"));
    setFrameShape(QFrame::NoFrame);
    // The columns take the keys; a click between or beside them must not take the keyboard
    // from the column that has it.
    setFocusPolicy(Qt::NoFocus);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    // A resizable content widget follows the visible area and is never narrower than it; its
    // fixed-width columns make it wider when they need to. Its height ignores what the columns
    // would like, so a short window shortens the columns instead of cutting them off.
    setWidgetResizable(true);
    m_row->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Ignored);
    setWidget(m_row);
    connect(m_row, &ColumnRow::scrollRequested, this, &ColumnScrollArea::scrollTo);
}

void ColumnScrollArea::scrollTo(const QRect& rect) {
    // Items added on this turn widen the row only once its layout request is handled; the
    // scroll range must include them first.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    // The scroll bar keeps the value within the row, so a rectangle near the right end shows
    // as far as the row reaches.
    horizontalScrollBar()->setValue(rect.x());
}

} // namespace quillery
