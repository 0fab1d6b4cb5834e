#include "columns/ColumnListStyle.h"

#include "columns/NoteListView.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>

namespace quillery {

namespace {

constexpr qreal kLineWidth = 2;
constexpr qreal kCornerRadius = 4;
constexpr qreal kCircleRadius = 4;
constexpr float kRowTint = 0.15f;

void paintOntoRow(QPainter& painter, const QRect& row, const QColor& highlight) {
    QColor tint = highlight;
    tint.setAlphaF(kRowTint);
    const qreal half = kLineWidth / 2;
    painter.setPen(QPen(highlight, kLineWidth));
    painter.setBrush(tint);
    painter.drawRoundedRect(QRectF(row).adjusted(half, half, -half, -half), kCornerRadius,
                            kCornerRadius);
}

void paintBetweenRows(QPainter& painter, const QRect& line, const QColor& highlight,
                      const QColor& background) {
    // The line between the last row and the one below it, or above the first row, would be cut
    // in half at the list's edge; keep it wholly inside.
    const qreal margin = kCircleRadius + kLineWidth / 2;
    qreal y = line.top();
    if (const QPaintDevice* device = painter.device())
        y = std::clamp(y, margin, std::max(margin, device->height() - margin));
    const QPointF centre(line.left() + margin, y);
    painter.setPen(QPen(highlight, kLineWidth, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(centre.x() + kCircleRadius, y),
                     QPointF(line.right() - kLineWidth / 2, y));
    painter.setBrush(background);
    painter.drawEllipse(centre, kCircleRadius, kCircleRadius);
}

} // namespace

ColumnListStyle::ColumnListStyle()
    : QProxyStyle(QApplication::style()->name()) {
}

void ColumnListStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                    QPainter* painter, const QWidget* widget) const {
    if (element != PE_IndicatorItemViewItemDrop || !option || !painter) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    // The list leaves the rectangle empty where nothing may be dropped, and zero high for a
    // drop between two rows.
    if (option->rect.isNull())
        return;
    if (const auto* view = qobject_cast<const NoteListView*>(widget);
        view && !view->dropMarkShown())
        return;
    const QColor highlight = option->palette.color(QPalette::Highlight);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (option->rect.height() == 0)
        paintBetweenRows(*painter, option->rect, highlight, option->palette.color(QPalette::Base));
    else
        paintOntoRow(*painter, option->rect, highlight);
    painter->restore();
}

int ColumnListStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                               QStyleHintReturn* returnData) const {
    if (hint == SH_ScrollBar_Transient)
        return 1;
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

} // namespace quillery
