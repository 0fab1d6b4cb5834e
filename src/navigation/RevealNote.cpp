#include "navigation/RevealNote.h"

#include "columns/NoteColumn.h"
#include "navigation/ColumnRow.h"

#include <algorithm>

namespace quillery {

bool revealNote(ColumnRow& row, const NotebookNode& note) {
    const NodePtr root = row.rootNode();
    if (!root || row.panel())
        return false;
    // The notes from the top down to this one; a walk up, since trees may be very deep.
    std::vector<const NotebookNode*> path;
    const NotebookNode* current = &note;
    for (; current && current != root.get(); current = current->parentNode())
        path.push_back(current);
    if (!current)
        return false;
    std::reverse(path.begin(), path.end());
    for (std::size_t depth = 0; depth < path.size(); ++depth) {
        NoteColumn* column = row.column(static_cast<int>(depth));
        if (!column || !column->parentNote())
            return false;
        const auto& children = column->parentNote()->children();
        auto at = std::find_if(children.begin(), children.end(),
                               [&](const NodePtr& child) { return child.get() == path[depth]; });
        if (at == children.end())
            return false;
        // Selecting opens the next column.
        column->selectRow(static_cast<int>(at - children.begin()));
    }
    row.focusColumn(static_cast<int>(path.size()) - 1);
    return true;
}

} // namespace quillery
