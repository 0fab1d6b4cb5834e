#pragma once

#include <QColor>

class QPalette;

namespace quillery {

// What the add button's colours depend on.
struct AddNoteButtonState {
    bool enabled = true;
    bool mouseDown = false;     // a press that started on the button is in progress
    bool mouseInBounds = false; // the pointer is over the button
    bool focused = false;       // the button has the keyboard focus
};

// The button's colour set.
struct AddNoteButtonColors {
    QColor disabled;
    QColor normal;
    QColor normalBorder;
    QColor mouseOver;
    QColor mouseClick;
    QColor normalText;
    QColor mouseOverText;
    QColor mouseDownText;

    // The design's colours, made for a dark backdrop.
    static AddNoteButtonColors standard();
    // The design's colours, except that on a light palette the resting title is a dark gray (the
    // design's light gray would all but vanish on white).
    static AddNoteButtonColors forPalette(const QPalette& palette);
};

struct AddNoteButtonLook {
    QColor background;
    QColor border;
    QColor title;
    friend bool operator==(const AddNoteButtonLook&, const AddNoteButtonLook&) = default;
};

// Keyboard focus looks like hover; a press dragged off the button shows a gray fill in a gray
// frame; a disabled button shows only a faint frame and title.
AddNoteButtonLook addNoteButtonLook(const AddNoteButtonState& state,
                                    const AddNoteButtonColors& colors);

} // namespace quillery
