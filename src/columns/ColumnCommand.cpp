#include "columns/ColumnCommand.h"

#include <QKeyEvent>

namespace quillery {

ColumnCommand columnCommandForKey(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (modifiers == Qt::NoModifier) {
        switch (event.key()) {
        case Qt::Key_Backspace:
        case Qt::Key_Delete:
            return ColumnCommand::DeleteNote;
        case Qt::Key_Return:
            return ColumnCommand::OpenNote;
        case Qt::Key_Left:
            return ColumnCommand::FocusLeft;
        case Qt::Key_Right:
            return ColumnCommand::FocusRight;
        case Qt::Key_Up:
            return ColumnCommand::MoveUp;
        case Qt::Key_Down:
            return ColumnCommand::MoveDown;
        case Qt::Key_Space:
            return ColumnCommand::PreviewPicture;
        default:
            break;
        }
    }
    // Emacs-style line motion, as on the desktop the design comes from: Ctrl+N down, Ctrl+P up.
    if (modifiers == Qt::ControlModifier) {
        if (event.key() == Qt::Key_N)
            return ColumnCommand::MoveDown;
        if (event.key() == Qt::Key_P)
            return ColumnCommand::MoveUp;
    }
    if ((modifiers & ~Qt::ShiftModifier) == Qt::NoModifier) {
        const QString text = event.text();
        if (!text.isEmpty() && text.at(0).isPrint())
            return ColumnCommand::Typing;
    }
    return ColumnCommand::None;
}

} // namespace quillery
