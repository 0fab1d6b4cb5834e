#include "columns/ColumnPrompts.h"

#include "columns/ExecDialog.h"
#include "markdown/MarkdownStyler.h"
#include "model/NotebookNode.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

#include <vector>

namespace quillery {

namespace {

constexpr qsizetype kLongestName = 40;

QString tr(const char* text) {
    return QCoreApplication::translate("ColumnPrompts", text);
}

// The first line of the note as it is shown, without its markdown, shortened to fit a question.
QString shownName(const NotebookNode& note) {
    const std::string& text = note.text();
    MarkdownStyler styler(std::string_view(text).substr(0, text.find('\n')));
    std::string shown;
    for (const StyledRun& run : styler.attributedString()) {
        if (run.isLineTerminator)
            break;
        shown += run.text;
    }
    QString line = QString::fromStdString(shown).trimmed();
    if (line.size() > kLongestName)
        line = line.left(kLongestName).trimmed() + QStringLiteral("…");
    return line;
}

// The notes below the note, at any depth; a walk with a stack, as trees may be very deep.
std::size_t notesBelow(const NotebookNode& note) {
    std::size_t count = 0;
    std::vector<const NotebookNode*> pending{&note};
    while (!pending.empty()) {
        const NotebookNode* next = pending.back();
        pending.pop_back();
        count += next->children().size();
        for (const NodePtr& child : next->children())
            pending.push_back(child.get());
    }
    return count;
}

bool askToDelete(QWidget* parent, const NotebookNode& note) {
    QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(), deleteQuestion(note),
                    QMessageBox::NoButton, parent);
    box.setInformativeText(
        tr("Deleted notes go to View → Deleted Notes, where Put Back returns them."));
    QPushButton* deleteButton = box.addButton(tr("&Delete"), QMessageBox::DestructiveRole);
    QPushButton* cancelButton = box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(deleteButton);
    box.setEscapeButton(cancelButton);
    execDialog(box);
    return box.clickedButton() == deleteButton;
}

void reportPicture(QWidget* parent, PictureProblem problem) {
    const bool missing = problem == PictureProblem::FileMissing;
    QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(),
                    missing ? tr("The picture's file is not in the notebook.")
                            : tr("No picture viewer opened the picture."),
                    QMessageBox::Ok, parent);
    box.setInformativeText(
        missing ? tr("It may have been removed from the notebook's folder, or a sync tool may not "
                     "have copied it yet. Once the file is back, try again.")
                : tr("Install a picture viewer, or set one as the desktop's program for "
                     "pictures. Meanwhile Space shows the picture here."));
    execDialog(box);
}

} // namespace

QString deleteQuestion(const NotebookNode& note) {
    const std::size_t below = notesBelow(note);
    QString name = shownName(note);
    if (name.isEmpty()) {
        name = note.imageIdentifier() ? tr("this picture") : tr("this note");
    } else {
        name = QStringLiteral("“%1”").arg(name);
    }
    if (below == 0)
        return tr("Delete %1?").arg(name);
    if (below == 1)
        return tr("Delete %1 and the note in it?").arg(name);
    return tr("Delete %1 and its %2 notes?").arg(name).arg(below);
}

ColumnPrompts ColumnPrompts::standard() {
    return {askToDelete, reportPicture};
}

} // namespace quillery
