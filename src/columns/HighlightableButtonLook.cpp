#include "columns/HighlightableButtonLook.h"

#include "columns/ColumnStyle.h"
#include "markdown/Styles.h"

#include <QPalette>

namespace quillery {

HighlightableButtonColors HighlightableButtonColors::standard() {
    HighlightableButtonColors colors;
    colors.disabled = QColor::fromRgbF(0.5f, 0.5f, 0.5f, 0.3f);
    colors.normal = Qt::transparent;
    colors.normalBorder = QColor::fromRgbF(0.5f, 0.5f, 0.5f);
    colors.mouseOver = columnstyle::toQColor(Colors::rowHighlight());
    colors.mouseClick = columnstyle::toQColor(Colors::buttonClickColor());
    colors.normalText = QColor::fromRgbF(2.0f / 3.0f, 2.0f / 3.0f, 2.0f / 3.0f);
    colors.mouseOverText = Qt::white;
    colors.mouseDownText = Qt::white;
    return colors;
}

HighlightableButtonColors HighlightableButtonColors::forPalette(const QPalette& palette) {
    HighlightableButtonColors colors = standard();
    if (!columnstyle::isDark(palette))
        colors.normalText = QColor::fromRgbF(1.0f / 3.0f, 1.0f / 3.0f, 1.0f / 3.0f);
    return colors;
}

HighlightableButtonLook highlightableButtonLook(const HighlightableButtonState& state,
                                                const HighlightableButtonColors& colors) {
    if (!state.enabled)
        return {colors.normal, colors.disabled, colors.disabled};
    if (state.mouseDown) {
        if (state.mouseInBounds)
            return {colors.mouseClick, Qt::transparent, colors.mouseOverText};
        return {colors.normalBorder, colors.normalBorder, colors.mouseDownText};
    }
    if (state.focused || state.mouseInBounds)
        return {colors.mouseOver, Qt::transparent, colors.mouseOverText};
    return {colors.normal, colors.normalBorder, colors.normalText};
}

} // namespace quillery
