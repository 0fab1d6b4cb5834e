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

// The button's colour set, from the palette: its accent is the palette's highlight, the colour
// of the app's selection and drop mark too.
struct AddNoteButtonColors {
    QColor disabled;
    QColor normal;
    QColor normalBorder;
    QColor hover;
    QColor hoverBorder;
    QColor focus;
    QColor pressed;
    QColor normalText;
    QColor hoverText;
    QColor focusText;
    QColor mouseDownText;

    static AddNoteButtonColors forPalette(const QPalette& palette);
};

struct AddNoteButtonLook {
    QColor background;
    QColor border;
    QColor title;
    friend bool operator==(const AddNoteButtonLook&, const AddNoteButtonLook&) = default;
};

// Keyboard focus fills the button with the accent; the pointer over it only tints it and frames
// it in the accent, so the two never look alike. A press shows a darker accent, and dragged off
// the button a grey fill in a grey frame; a disabled button shows only a faint frame and title.
AddNoteButtonLook addNoteButtonLook(const AddNoteButtonState& state,
                                    const AddNoteButtonColors& colors);

} // namespace quillery
