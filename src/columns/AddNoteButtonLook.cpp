#include "columns/AddNoteButtonLook.h"

#include "columns/ColumnStyle.h"

#include <QPalette>

namespace quillery {

AddNoteButtonColors AddNoteButtonColors::forPalette(const QPalette& palette) {
    const QColor accent = columnstyle::accent(palette);
    const QColor text = palette.color(QPalette::Active, QPalette::ButtonText);
    AddNoteButtonColors colors;
    colors.disabled = QColor::fromRgbF(0.5f, 0.5f, 0.5f, 0.3f);
    colors.normal = Qt::transparent;
    colors.normalBorder = QColor::fromRgbF(0.5f, 0.5f, 0.5f);
    colors.hover = accent;
    colors.hover.setAlphaF(0.15f);
    colors.hoverBorder = accent;
    colors.focus = accent;
    colors.pressed = accent.darker(125);
    colors.normalText = QColor::fromRgbF(0.5f, 0.5f, 0.5f);
    colors.hoverText = text;
    colors.focusText = palette.color(QPalette::Active, QPalette::HighlightedText);
    colors.mouseDownText = Qt::white;
    return colors;
}

AddNoteButtonLook addNoteButtonLook(const AddNoteButtonState& state,
                                    const AddNoteButtonColors& colors) {
    if (!state.enabled)
        return {colors.normal, colors.disabled, colors.disabled};
    if (state.mouseDown) {
        if (state.mouseInBounds)
            return {colors.pressed, Qt::transparent, colors.focusText};
        return {colors.normalBorder, colors.normalBorder, colors.mouseDownText};
    }
    if (state.focused)
        return {colors.focus, Qt::transparent, colors.focusText};
    if (state.mouseInBounds)
        return {colors.hover, colors.hoverBorder, colors.hoverText};
    return {colors.normal, colors.normalBorder, colors.normalText};
}

} // namespace quillery
