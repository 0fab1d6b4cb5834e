#pragma once

#include "model/NotebookNode.h"

namespace quillery {

class ColumnRow;

// Opens the columns along the note's path, selects the note in the last of them and gives that
// column the focus. Returns false, changing nothing, for a note that is not under the root (a
// deleted note) or while a panel is shown.
bool revealNote(ColumnRow& row, const NotebookNode& note);

} // namespace quillery
