#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace quillery {

class NotebookNode;

// Why a picture note did not open in the desktop's picture viewer.
enum class PictureProblem {
    FileMissing, // the notebook has no file for the picture (removed, or not synced yet)
    NoViewer,    // no program took the picture
};

// The questions a column's commands ask. The standard set shows modal message boxes; tests swap
// in their own so that nothing blocks on a modal dialog.
struct ColumnPrompts {
    // Asked before deleting a note that has content; true to delete.
    std::function<bool(QWidget* parent, const NotebookNode& note)> confirmDelete;
    std::function<void(QWidget* parent, PictureProblem problem)> reportPictureProblem;

    static ColumnPrompts standard();
};

// The question before deleting the note: it names the note by its first line and counts the
// notes that go with it, as in "Delete “Packing list” and its 3 notes?".
QString deleteQuestion(const NotebookNode& note);

} // namespace quillery
