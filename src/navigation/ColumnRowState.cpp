#include "navigation/ColumnRowState.h"

#include "columns/NoteColumn.h"
#include "columns/NoteListView.h"
#include "document/Document.h"
#include "navigation/ColumnRow.h"
#include "navigation/ColumnScrollArea.h"

#include <QScrollBar>
#include <QTimer>

#include <algorithm>

namespace quillery {

namespace {

// The note and the notes above it, top first, without the root; empty when the note is not
// under the root (deleted, or gone). The walk is bounded, as a foreign journal may hold a cycle.
std::vector<const NotebookNode*> pathTo(const Document& document, const Identifier& identifier) {
    std::vector<const NotebookNode*> path;
    const NodePtr node = document.node(identifier);
    const NotebookNode* at = node.get();
    while (at && at != document.rootNode().get() && path.size() <= document.nodeCount()) {
        path.push_back(at);
        at = at->parentNode();
    }
    if (at != document.rootNode().get())
        return {};
    std::ranges::reverse(path);
    return path;
}

int rowOf(const NoteColumn& column, const NotebookNode* node) {
    const NodePtr& parent = column.parentNote();
    if (!parent)
        return -1;
    const auto& children = parent->children();
    const auto found = std::ranges::find_if(
        children, [node](const NodePtr& child) { return child.get() == node; });
    return found == children.end() ? -1 : static_cast<int>(found - children.begin());
}

} // namespace

ColumnRowState ColumnRowState::capture(const ColumnScrollArea& content) {
    ColumnRowState state;
    const ColumnRow& split = *content.columnRow();
    for (int depth = 0; const NoteColumn* column = split.column(depth); ++depth) {
        state.columnScroll.push_back(column->listView()->verticalScrollBar()->value());
        const NodePtr selected = column->selectedNode();
        if (!selected)
            break;
        state.selection.push_back(selected->identifier());
    }
    state.rowScroll = content.horizontalScrollBar()->value();
    state.chosenWidths = split.chosenWidths();
    if (const NoteColumn* active = split.activeColumn(); active && active->hasFocus())
        state.focusedDepth = active->depth();
    return state;
}

void ColumnRowState::restore(ColumnScrollArea& content, const Document& document) const {
    ColumnRow& split = *content.columnRow();
    split.setChosenWidths(chosenWidths);
    std::vector<const NotebookNode*> path;
    for (auto it = selection.rbegin(); it != selection.rend() && path.empty(); ++it)
        path = pathTo(document, *it);
    for (std::size_t depth = 0; depth < path.size(); ++depth) {
        NoteColumn* column = split.column(static_cast<int>(depth));
        const int row = column ? rowOf(*column, path[depth]) : -1;
        if (row < 0)
            break;
        column->selectRow(row);
    }
    // Scroll ranges are known only once the new columns have been laid out.
    QTimer::singleShot(0, &content, [state = *this, &content] {
        ColumnRow& laidOut = *content.columnRow();
        for (std::size_t depth = 0; depth < state.columnScroll.size(); ++depth) {
            if (NoteColumn* column = laidOut.column(static_cast<int>(depth)))
                column->listView()->verticalScrollBar()->setValue(state.columnScroll[depth]);
        }
        content.horizontalScrollBar()->setValue(state.rowScroll);
        if (state.focusedDepth >= 0)
            laidOut.focusColumn(state.focusedDepth);
    });
}

} // namespace quillery
