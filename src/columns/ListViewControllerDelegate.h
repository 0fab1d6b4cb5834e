#pragma once

#include "model/NotebookNode.h"

class QWidget;

namespace quillery {

class ListViewController;

// What a column asks of the navigation that holds it. Every call passes the calling column first.
class ListViewControllerDelegate {
public:
    virtual ~ListViewControllerDelegate() = default;
    virtual void listViewControllerDidSelectNode(ListViewController& column,
                                                 const NodePtr& node) = 0;
    // Opens the picture panel for a picture note.
    virtual void listViewControllerDidDoubleClickNode(ListViewController& column,
                                                      const NodePtr& node) = 0;
    virtual void listViewControllerDidClearSelectedNode(ListViewController& column) = 0;
    virtual void listViewControllerDidTapMoveLeft(ListViewController& column) = 0;
    virtual void listViewControllerDidTapMoveRight(ListViewController& column) = 0;
    // Shows the panel (the note editor) as the column right of this one; the navigation takes
    // ownership of the panel widget.
    virtual void listViewControllerWantsToPresentViewController(ListViewController& column,
                                                                QWidget* panel) = 0;
    virtual void listViewControllerWantsToDismissViewController(ListViewController& column,
                                                                QWidget* panel) = 0;
};

} // namespace quillery
