#include "columns/AddNoteButtonLook.h"

#include "columns/ColumnStyle.h"
#include "markdown/Styles.h"

#include <QPalette>

namespace quillery {

AddNoteButtonColors AddNoteButtonColors::standard() {
    AddNoteButtonColors colors;
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

AddNoteButtonColors AddNoteButtonColors::forPalette(const QPalette& palette) {
    AddNoteButtonColors colors = standard();
    if (!columnstyle::isDark(palette))
        colors.normalText = QColor::fromRgbF(1.0f / 3.0f, 1.0f / 3.0f, 1.0f / 3.0f);
    return colors;
}

AddNoteButtonLook addNoteButtonLook(const AddNoteButtonState& state,
                                    const AddNoteButtonColors& colors) {
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
