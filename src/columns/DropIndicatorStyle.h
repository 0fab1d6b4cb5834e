#pragma once

#include <QProxyStyle>

namespace quillery {

// The style of a column's list: the application's own style, except that the mark showing
// where a dragged row would land is drawn in the palette's highlight colour instead of as a
// black frame. A drop onto a row outlines and tints the row; a drop between rows is a line
// with a small circle at its left end.
class DropIndicatorStyle : public QProxyStyle {
    Q_OBJECT

public:
    // Wraps a fresh instance of the application's current style (a proxy owns its base, so
    // the application's own instance cannot be used).
    DropIndicatorStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
};

} // namespace quillery
