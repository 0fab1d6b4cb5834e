#pragma once

#include "markdown/Styles.h"

#include <QColor>
#include <QFont>

class QPalette;

namespace quillery::columnstyle {

QColor toQColor(const Color& color);

// True for palettes whose text background is dark (a dark desktop theme).
bool isDark(const QPalette& palette);

// The colour to draw note text in. The styling tables were made for black text on white: their
// black (the colour of every slot left at its default) becomes the palette's text colour, so
// notes stay readable under dark themes; other colours keep their hue, and under a dark
// palette are brightened enough to stand out from the dark background.
QColor textColor(const Color& designColor, const QPalette& palette);

// The colours of the count of a row's children: a pill and the number on it. Normally white on a
// mid-gray pill, legible on light and dark backgrounds alike. A dimmed row fades its pill but
// draws the number in a mid text colour rather than fading it too, so it recedes with the row
// and still stands out from the pill.
struct ChildCountColors {
    QColor badge;
    QColor text;
};
ChildCountColors childCountColors(const QPalette& palette, bool dimmed);

// The one accent colour of the app: the palette's highlight (as when its window is active, so a
// dimmed column still shows it), for the selection of the list that has the keyboard, the focused
// add button and the drop mark.
QColor accent(const QPalette& palette);

// The colours of a marked row (selected, or being edited): a light tint over the row, and the
// outline and the bar at its left edge. The accent marks the row the keyboard is in (or the note
// being edited); any other selected row is marked in a neutral grey.
struct SelectionLook {
    QColor tint;
    QColor mark;
};
SelectionLook selectionLook(const QPalette& palette, bool emphasized);

// Sizes in the design are in the original desktop's points, which are logical pixels; Qt points
// are 1/72 inch, 4/3 of a logical pixel at the standard 96 dpi. Converting keeps the design's
// proportions and still follows the desktop's font DPI setting.
double qtPointSize(double designPoints);

// The font of a family, design size, weight and slant; a missing family falls back through
// fontconfig to a close face at the same size.
QFont font(const FontSpec& fontSpec);

} // namespace quillery::columnstyle
