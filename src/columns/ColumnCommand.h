#pragma once

class QKeyEvent;

namespace quillery {

// The commands a column answers on the keyboard, whether the key reached it from its list or
// from its add button.
enum class ColumnCommand {
    None, // not the column's key: the focused widget or the window handles it
    DeleteNote,
    OpenNote, // the editor for a text note, the desktop's viewer for a picture note
    FocusLeft,
    FocusRight,
    MoveUp,
    MoveDown,
    PreviewPicture, // shows a picture note in the picture panel
    Typing, // plain typing, taken and ignored so it never reaches the list's type-ahead search
};

ColumnCommand columnCommandForKey(const QKeyEvent& event);

} // namespace quillery
