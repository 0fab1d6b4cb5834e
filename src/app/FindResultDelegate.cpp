#include "app/FindResultDelegate.h"

#include "app/FindResultsModel.h"

#include <QApplication>
#include <QPainter>
#include <QTextLayout>

namespace quillery {

namespace {

QFont pathFont(const QFont& font) {
    QFont smaller = font;
    smaller.setPointSizeF(font.pointSizeF() * 0.85);
    return smaller;
}

int margin(const QStyleOptionViewItem& option) {
    return option.fontMetrics.height() / 4;
}

} // namespace

void FindResultDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    QStyleOptionViewItem background = option;
    initStyleOption(&background, index);
    background.text.clear();
    QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &background, painter, option.widget);

    const bool selected = option.state & QStyle::State_Selected;
    const QPalette::ColorRole textRole = selected ? QPalette::HighlightedText : QPalette::Text;
    const QRect area =
        option.rect.adjusted(margin(option), margin(option), -margin(option), -margin(option));
    painter->save();
    painter->setClipRect(area);

    QString line = index.data(Qt::DisplayRole).toString();
    if (index.data(FindResultsModel::DeletedRole).toBool())
        line += tr(" (deleted)");
    QTextLayout layout(line, option.font);
    QList<QTextLayout::FormatRange> formats;
    const QList<int> highlights = index.data(FindResultsModel::HighlightsRole).value<QList<int>>();
    QColor tint = option.palette.color(QPalette::Highlight);
    tint.setAlpha(selected ? 0 : 70);
    for (qsizetype i = 0; i + 1 < highlights.size(); i += 2) {
        QTextLayout::FormatRange range;
        range.start = highlights[i];
        range.length = highlights[i + 1];
        range.format.setFontWeight(QFont::Bold);
        range.format.setBackground(tint);
        formats << range;
    }
    layout.setFormats(formats);
    layout.beginLayout();
    QTextLine textLine = layout.createLine();
    if (textLine.isValid())
        textLine.setLineWidth(1e6);
    layout.endLayout();
    painter->setPen(option.palette.color(textRole));
    layout.draw(painter, area.topLeft());

    const QFont smaller = pathFont(option.font);
    const QFontMetrics pathMetrics(smaller);
    const QString path = pathMetrics.elidedText(index.data(FindResultsModel::PathRole).toString(),
                                                Qt::ElideMiddle, area.width());
    painter->setFont(smaller);
    QColor pathColour = option.palette.color(textRole);
    pathColour.setAlphaF(selected ? 0.85f : 0.6f);
    painter->setPen(pathColour);
    const QRect pathArea(area.left(), area.top() + option.fontMetrics.height(), area.width(),
                         pathMetrics.height());
    painter->drawText(pathArea, Qt::AlignLeft | Qt::AlignVCenter, path);
    painter->restore();
}

QSize FindResultDelegate::sizeHint(const QStyleOptionViewItem& option,
                                   const QModelIndex& /*index*/) const {
    const int height = option.fontMetrics.height() + QFontMetrics(pathFont(option.font)).height() +
                       2 * margin(option);
    return {option.rect.width() > 0 ? option.rect.width() : 200, height};
}

} // namespace quillery
