#pragma once

#include "model/NotebookNode.h"

#include <string>

namespace quillery {

class EditNodeViewController;

// The column that opened the note editor hears how it ended.
class EditNodeViewControllerDelegate {
public:
    virtual ~EditNodeViewControllerDelegate() = default;
    virtual void editNodeViewControllerDidUpdateText(EditNodeViewController& editor,
                                                     const std::string& text,
                                                     const NodePtr& node) = 0;
    virtual void editNodeViewControllerDidCancelEditing(EditNodeViewController& editor,
                                                        const NodePtr& node) = 0;
};

} // namespace quillery
