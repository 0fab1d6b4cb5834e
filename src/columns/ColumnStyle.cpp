#include "columns/ColumnStyle.h"

#include <QPalette>

#include <algorithm>

namespace quillery::columnstyle {

QColor toQColor(const Color& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Base).lightnessF() < 0.5f;
}

QColor textColor(const Color& designColor, const QPalette& palette) {
    if (designColor.red == 0 && designColor.green == 0 && designColor.blue == 0) {
        QColor text = palette.color(QPalette::Text);
        text.setAlphaF(static_cast<float>(designColor.alpha));
        return text;
    }
    QColor color = toQColor(designColor);
    if (isDark(palette)) {
        float hue = 0;
        float saturation = 0;
        float value = 0;
        float alpha = 0;
        color.getHsvF(&hue, &saturation, &value, &alpha);
        color = QColor::fromHsvF(hue, saturation, std::max(value, 0.8f), alpha);
    }
    return color;
}

ChildCountColors childCountColors(const QPalette& palette, bool dimmed) {
    if (!dimmed)
        return {QColor::fromRgbF(0.5f, 0.5f, 0.5f, 0.85f), QColor(Qt::white)};
    // The disabled group's text colour is already faded; fading it again would lose the count.
    QColor text = palette.color(QPalette::Normal, QPalette::Text);
    text.setAlphaF(0.5f);
    return {QColor::fromRgbF(0.5f, 0.5f, 0.5f, 0.2f), text};
}

QColor accent(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Highlight);
}

SelectionLook selectionLook(const QPalette& palette, bool emphasized) {
    if (emphasized) {
        QColor tint = accent(palette);
        tint.setAlphaF(0.14f);
        return {tint, accent(palette)};
    }
    // Grey that shows on light and dark lists alike.
    const float grey = isDark(palette) ? 0.8f : 0.5f;
    return {QColor::fromRgbF(grey, grey, grey, 0.08f), QColor::fromRgbF(grey, grey, grey, 0.45f)};
}

double qtPointSize(double designPoints) {
    return designPoints * 72.0 / 96.0;
}

QFont font(const FontSpec& fontSpec) {
    QFont result(QString::fromStdString(fontSpec.family));
    result.setPointSizeF(qtPointSize(fontSpec.pointSize));
    result.setBold(fontSpec.bold);
    result.setItalic(fontSpec.italic);
    return result;
}

} // namespace quillery::columnstyle
