#pragma once

#include <functional>

class QWidget;

namespace quillery {

// The questions a column's commands ask. The standard set shows modal message boxes; tests swap
// in their own so that nothing blocks on a modal dialog.
struct ColumnPrompts {
    // "Are you sure?" before deleting a note that has content; true to delete.
    std::function<bool(QWidget* parent)> confirmDelete;
    // A picture note's file could not be found.
    std::function<void(QWidget* parent)> reportMissingPicture;

    static ColumnPrompts standard();
};

} // namespace quillery
