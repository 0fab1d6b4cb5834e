#include "navigation/MoveSelectedNote.h"

#include "columns/NoteColumn.h"
#include "document/Document.h"
#include "navigation/ColumnRow.h"

#include <algorithm>

namespace quillery {

namespace {

int rowOf(const NotebookNode& parent, const NotebookNode& child) {
    const auto& children = parent.children();
    const auto found =
        std::ranges::find_if(children, [&](const NodePtr& each) { return each.get() == &child; });
    return found == children.end() ? -1 : static_cast<int>(found - children.begin());
}

// Selects the note in the column at the depth and focuses that column; selecting opens the note's
// children to the right, as a click would.
void selectAndFocus(ColumnRow& row, int depth, const NotebookNode& note) {
    NoteColumn* column = row.column(depth);
    if (!column || !column->parentNote())
        return;
    column->selectRow(rowOf(*column->parentNote(), note));
    row.focusColumn(depth);
}

} // namespace

bool moveSelectedNote(ColumnRow& row, NoteColumn& column, NoteMoveDirection direction) {
    Document* document = column.document();
    const NodePtr parent = column.parentNote();
    const NodePtr note = column.selectedNode();
    if (!document || !parent || !note || column.temporaryNode() || !column.isColumnEnabled())
        return false;
    const int index = rowOf(*parent, *note);
    const int count = static_cast<int>(parent->children().size());
    const int depth = column.depth();
    switch (direction) {
    case NoteMoveDirection::Up:
        if (index <= 0)
            return false;
        document->userDidMove(*note, static_cast<std::size_t>(index - 1));
        break;
    case NoteMoveDirection::Down:
        if (index < 0 || index + 1 >= count)
            return false;
        document->userDidMove(*note, static_cast<std::size_t>(index + 2));
        break;
    case NoteMoveDirection::Out: {
        const NodePtr grandparent = document->node(parent->parentIdentifier());
        if (depth == 0 || !grandparent)
            return false;
        const int after = rowOf(*grandparent, *parent) + 1;
        std::optional<std::size_t> at;
        if (after > 0 && after < static_cast<int>(grandparent->children().size()))
            at = static_cast<std::size_t>(after);
        document->userDidMove(*note, *grandparent, at);
        selectAndFocus(row, depth - 1, *note);
        break;
    }
    case NoteMoveDirection::In: {
        if (index <= 0)
            return false;
        const NodePtr above = parent->children()[static_cast<std::size_t>(index - 1)];
        document->userDidMove(*note, *above);
        selectAndFocus(row, depth, *above);
        selectAndFocus(row, depth + 1, *note);
        break;
    }
    }
    return true;
}

} // namespace quillery
