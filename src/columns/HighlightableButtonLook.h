#pragma once

#include <QColor>

class QPalette;

namespace quillery {

// What the add button's colours depend on.
struct HighlightableButtonState {
    bool enabled = true;
    bool mouseDown = false;     // a press that started on the button is in progress
    bool mouseInBounds = false; // the pointer is over the button
    bool focused = false;       // the button has the keyboard focus
};

// The button's colour set.
struct HighlightableButtonColors {
    QColor disabled;
    QColor normal;
    QColor normalBorder;
    QColor mouseOver;
    QColor mouseClick;
    QColor normalText;
    QColor mouseOverText;
    QColor mouseDownText;

    // The design's colours, made for a dark backdrop.
    static HighlightableButtonColors standard();
    // The design's colours, except that on a light palette the resting title is a dark gray (the
    // design's light gray would all but vanish on white).
    static HighlightableButtonColors forPalette(const QPalette& palette);
};

struct HighlightableButtonLook {
    QColor background;
    QColor border;
    QColor title;
    friend bool operator==(const HighlightableButtonLook&,
                           const HighlightableButtonLook&) = default;
};

// Keyboard focus looks like hover; a press dragged off the button shows a gray fill in a gray
// frame; a disabled button shows only a faint frame and title.
HighlightableButtonLook highlightableButtonLook(const HighlightableButtonState& state,
                                                const HighlightableButtonColors& colors);

} // namespace quillery
