#pragma once

namespace quillery {

class NoteColumn;
class ColumnRow;

// Where the keyboard moves a note: up or down among its siblings, out to its parent's column just
// after its parent, or in as the last child of the note above it.
enum class NoteMoveDirection { Up, Down, Out, In };

// Moves the note selected in the column (one of the row's) as one undo step, then selects it where
// it went and gives that column the keyboard. Returns false, changing nothing, when the note cannot
// go that way: the first or last row, the top level for Out, the first row for In.
bool moveSelectedNote(ColumnRow& row, NoteColumn& column, NoteMoveDirection direction);

} // namespace quillery
