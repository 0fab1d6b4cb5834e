#pragma once

#include <QUrl>

#include <functional>

class QWidget;

namespace quillery {

// The questions and outside effects of a column's commands. The standard set shows modal
// message boxes and opens files with the desktop's default application; tests swap in their
// own so that nothing blocks on a modal dialog.
struct ColumnPrompts {
    // "Are you sure?" before deleting a note that has content; true to delete.
    std::function<bool(QWidget* parent)> confirmDelete;
    // A picture note's file could not be found.
    std::function<void(QWidget* parent)> reportMissingPicture;
    std::function<void(const QUrl& url)> openUrl;

    static ColumnPrompts standard();
};

} // namespace quillery
