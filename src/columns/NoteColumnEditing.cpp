// The column's edit commands: adding a note (the one edit that waits for its editor before it is
// recorded), editing, deleting, pasting, and the note editor's outcome.
#include "columns/AddNoteButton.h"
#include "columns/ColumnPasteHandler.h"
#include "columns/NodeListModel.h"
#include "columns/NodeRowDelegate.h"
#include "columns/NoteColumn.h"
#include "columns/NoteListView.h"
#include "document/Document.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTimer>
#include <QUrl>

#include <algorithm>

namespace quillery {

void NoteColumn::addNote() {
    if (const NodePtr& node = parentNote())
        startNewNote(node->children().size());
}

void NoteColumn::addNoteBeneath() {
    const NodePtr& node = parentNote();
    if (!node)
        return;
    const int row = m_listView->selectedRow();
    startNewNote(isValidRow(row) ? static_cast<std::size_t>(row) + 1 : node->children().size());
}

void NoteColumn::editSelectedNote() {
    const int row = m_listView->selectedRow();
    if (!parentNote() || !isValidRow(row))
        return;
    const NodePtr node = m_model->nodeAt(row);
    if (!node)
        return;
    if (!node->imageIdentifier()) {
        showEditor(node);
        return;
    }
    if (!m_document)
        return;
    // A picture of a notebook never saved has no file yet: the notebook's own copy is shown.
    if (!m_document->fileLocation()) {
        emit picturePreviewRequested(node);
        return;
    }
    const auto file = m_document->url(*node->imageIdentifier());
    const QString path = file ? QString::fromStdString(file->string()) : QString();
    std::optional<PictureProblem> problem;
    if (path.isEmpty() || !QFileInfo(path).isFile())
        problem = PictureProblem::FileMissing;
    else if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        problem = PictureProblem::NoViewer;
    if (problem && m_prompts.reportPictureProblem)
        m_prompts.reportPictureProblem(this, *problem);
}

void NoteColumn::deleteSelectedNote() {
    const int row = m_listView->selectedRow();
    if (!parentNote() || !isValidRow(row))
        return;
    const NodePtr node = m_model->nodeAt(row);
    if (!node || !m_document)
        return;
    if (!node->isEmpty() && m_prompts.confirmDelete && !m_prompts.confirmDelete(this, *node))
        return;
    m_document->userDidDelete(*node);
}

bool NoteColumn::canPaste() const {
    const QMimeData* clipboard = QGuiApplication::clipboard()->mimeData();
    return m_paste && parentNote() && m_enabled && !m_temporaryNode && clipboard &&
           ColumnPasteHandler::canPaste(*clipboard);
}

bool NoteColumn::paste() {
    if (!canPaste())
        return false;
    const ColumnDropHandler::Outcome outcome =
        m_paste->paste(parentNote(), pasteIndex(), *QGuiApplication::clipboard()->mimeData());
    if (outcome.added)
        selectNote(*outcome.added);
    if (outcome.noteToEdit) {
        QTimer::singleShot(0, this, [this, note = outcome.noteToEdit] { showEditor(note); });
    }
    return outcome.accepted;
}

std::size_t NoteColumn::pasteIndex() const {
    const int row = m_listView->selectedRow();
    if (!isValidRow(row) || m_addButton->hasFocus())
        return static_cast<std::size_t>(rowCount());
    return static_cast<std::size_t>(row) + 1;
}

void NoteColumn::selectNote(const NotebookNode& note) {
    const int row = m_model->rowShowing(note.identifier());
    if (row < 0)
        return;
    selectRow(row);
    m_listView->setFocus(Qt::OtherFocusReason);
}

void NoteColumn::startNewNote(std::size_t index) {
    const NodePtr& parent = parentNote();
    if (!parent || m_temporaryNode)
        return;
    // The one edit that bypasses the document: the note sits among the children, unrecorded,
    // until its editor is done; only then is it recorded, with its text.
    m_temporaryNode = NotebookNode::create(parent->identifier(), std::string());
    m_temporaryRowShown = false;
    auto& children = parent->children();
    children.insert(children.begin() +
                        static_cast<std::ptrdiff_t>(std::min(index, children.size())),
                    m_temporaryNode);
    QTimer::singleShot(0, this, [this, node = m_temporaryNode] {
        if (m_temporaryNode != node)
            return;
        const auto& current = parentNote()->children();
        const auto found = std::find(current.begin(), current.end(), node);
        if (found == current.end())
            return;
        const int row = static_cast<int>(found - current.begin());
        m_model->insertRowAt(row);
        m_temporaryRowShown = true;
        m_listView->scrollTo(m_model->index(row));
        updateEmptyLabel();
        showEditor(node);
    });
}

std::size_t NoteColumn::removeTemporaryNode() {
    auto& children = parentNote()->children();
    const auto found = std::find(children.begin(), children.end(), m_temporaryNode);
    const auto index = static_cast<std::size_t>(found - children.begin());
    if (found != children.end()) {
        children.erase(found);
        if (m_temporaryRowShown)
            m_model->removeRowAt(static_cast<int>(index));
    }
    m_temporaryNode.reset();
    m_temporaryRowShown = false;
    return std::min(index, children.size());
}

void NoteColumn::showEditor(const NodePtr& node) {
    // Parented to the column until the navigation places it.
    auto* editor = new NoteEditorPanel(this);
    editor->hide();
    editor->setNote(node);
    connect(editor, &NoteEditorPanel::finished, this, &NoteColumn::editorFinished);
    connect(editor, &NoteEditorPanel::cancelled, this, &NoteColumn::editorCancelled);
    // The note stays marked in its dimmed column while the editor is open.
    m_editedNote = node;
    m_rows->setEditedNote(node.get());
    m_listView->viewport()->update();
    emit editorRequested(editor);
}

void NoteColumn::editorFinished(const NodePtr& node, const std::string& text) {
    forgetEditedNote();
    const NodePtr parent = parentNote();
    if (!parent)
        return;
    if (m_temporaryNode && node == m_temporaryNode) {
        const NodePtr newNode = m_temporaryNode;
        newNode->setText(text);
        const std::size_t index = removeTemporaryNode();
        // Recorded whatever its text, an empty one too; the row comes back with the update.
        if (m_document)
            m_document->userDidAdd(*newNode, *parent, static_cast<long>(index));
        QTimer::singleShot(0, this, [this, row = static_cast<int>(index)] { selectRow(row); });
    } else if (m_document && node) {
        m_document->userDidModify(*node, text);
    }
    updateEmptyLabel();
    emit editorDone();
}

void NoteColumn::editorCancelled(const NodePtr& node) {
    forgetEditedNote();
    if (m_temporaryNode && node == m_temporaryNode && parentNote())
        removeTemporaryNode();
    updateEmptyLabel();
    emit editorDone();
}

void NoteColumn::forgetEditedNote() {
    m_editedNote.reset();
    m_rows->setEditedNote(nullptr);
    m_listView->viewport()->update();
}

} // namespace quillery
