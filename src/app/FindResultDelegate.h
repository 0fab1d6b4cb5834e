#pragma once

#include <QStyledItemDelegate>

namespace quillery {

// Paints a search result on two lines: the note's first line with the matched words in bold on
// a tint of the highlight colour, and under it the note's path, smaller and shortened in the
// middle when it does not fit. A deleted note says so after its first line.
class FindResultDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace quillery
