#pragma once

#include <QProxyStyle>

namespace quillery {

// The style of a column's list: the application's own style, with two changes.
// - The mark showing where a dragged row would land is drawn in the palette's highlight colour
//   instead of as a black frame. A drop onto a row outlines and tints the row; a drop between
//   rows is a line with a small circle at its left end.
// - The scroll bar lies over the rows while it shows rather than taking a strip of the column:
//   otherwise a column just as tall as its notes would narrow its text for the bar, grow taller
//   for it, and lose the bar again, without end.
class ColumnListStyle : public QProxyStyle {
    Q_OBJECT

public:
    // Wraps a fresh instance of the application's current style (a proxy owns its base, so
    // the application's own instance cannot be used).
    ColumnListStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption* option = nullptr,
                  const QWidget* widget = nullptr,
                  QStyleHintReturn* returnData = nullptr) const override;
};

} // namespace quillery
