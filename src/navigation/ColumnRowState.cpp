#include "navigation/ColumnRowState.h"

#include "columns/CustomTableView.h"
#include "columns/ListViewController.h"
#include "document/Document.h"
#include "navigation/MyHorizontalScrollViewController.h"
#include "navigation/MySplitViewController.h"

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
    if (at != document.rootNode().get()) {
        return {};
    }
    std::ranges::reverse(path);
    return path;
}

int rowOf(const ListViewController& column, const NotebookNode* node) {
    const NodePtr& parent = column.representedNode();
    if (!parent) {
        return -1;
    }
    const auto& children = parent->children();
    const auto found = std::ranges::find_if(
        children, [node](const NodePtr& child) { return child.get() == node; });
    return found == children.end() ? -1 : static_cast<int>(found - children.begin());
}

} // namespace

ColumnRowState ColumnRowState::capture(const MyHorizontalScrollViewController& content) {
    ColumnRowState state;
    const MySplitViewController& split = *content.splitViewController();
    for (int depth = 0; const ListViewController* column = split.column(depth); ++depth) {
        state.columnScroll.push_back(column->tableView()->verticalScrollBar()->value());
        const NodePtr selected = column->selectedNode();
        if (!selected) {
            break;
        }
        state.selection.push_back(selected->identifier());
    }
    state.rowScroll = content.horizontalScrollBar()->value();
    if (const ListViewController* active = split.activeColumn(); active && active->hasFocus()) {
        state.focusedDepth = active->nodeDepth();
    }
    return state;
}

void ColumnRowState::restore(MyHorizontalScrollViewController& content,
                             const Document& document) const {
    MySplitViewController& split = *content.splitViewController();
    std::vector<const NotebookNode*> path;
    for (auto it = selection.rbegin(); it != selection.rend() && path.empty(); ++it) {
        path = pathTo(document, *it);
    }
    for (std::size_t depth = 0; depth < path.size(); ++depth) {
        ListViewController* column = split.column(static_cast<int>(depth));
        const int row = column ? rowOf(*column, path[depth]) : -1;
        if (row < 0) {
            break;
        }
        column->selectRow(row);
    }
    // Scroll ranges are known only once the new columns have been laid out.
    QTimer::singleShot(0, &content, [state = *this, &content] {
        MySplitViewController& laidOut = *content.splitViewController();
        for (std::size_t depth = 0; depth < state.columnScroll.size(); ++depth) {
            if (ListViewController* column = laidOut.column(static_cast<int>(depth))) {
                column->tableView()->verticalScrollBar()->setValue(state.columnScroll[depth]);
            }
        }
        content.horizontalScrollBar()->setValue(state.rowScroll);
        if (state.focusedDepth >= 0) {
            laidOut.makeSplitViewFirstResponder(state.focusedDepth);
        }
    });
}

} // namespace quillery
