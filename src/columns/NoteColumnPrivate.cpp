#include "columns/NoteColumnPrivate.h"

#include "columns/AddNoteButton.h"
#include "columns/NodeRowDelegate.h"
#include "columns/NoteEditorPanel.h"
#include "columns/NoteListView.h"

#include <QLabel>
#include <QScrollArea>
#include <QTimer>

#include <algorithm>

namespace quillery {

NoteColumn::Private::Private(NoteColumn* column, Document* doc)
    : q(column)
    , document(doc)
    , model(new NodeListModel(doc, column))
    , rows(new NodeRowDelegate(doc, column))
    , listView(new NoteListView(column))
    , noEntriesLabel(new QLabel(column))
    , addButton(new AddNoteButton(column)) {
}

void NoteColumn::Private::updateUI() {
    const NodePtr& node = model->representedNode();
    noEntriesLabel->setVisible(!node || node->children().empty());
}

void NoteColumn::Private::selectionDidChange() {
    if (selectionHandlingSuspended)
        return;
    const int row = listView->selectedRow();
    if (isValidRow(row))
        emit q->noteSelected(model->nodeAt(row));
    else
        emit q->selectionCleared();
    listView->viewport()->update();
}

void NoteColumn::Private::documentDidUpdate(const DocumentUpdate& update) {
    if (!model->representedNode() || !updater)
        return;
    // The row operation may move or clear the selection; the navigation hears once, afterwards,
    // and only when the selected note changed.
    const NodePtr before = q->selectedNode();
    selectionHandlingSuspended = true;
    updater->apply(update);
    selectionHandlingSuspended = false;
    updateUI();
    const NodePtr after = q->selectedNode();
    if (before != after)
        selectionDidChange();
}

bool NoteColumn::Private::perform(ColumnCommand command) {
    switch (command) {
    case ColumnCommand::None:
        return false;
    case ColumnCommand::DeleteNote:
        deleteSelectedNode();
        break;
    case ColumnCommand::OpenNote:
        q->editSelectedNote();
        break;
    case ColumnCommand::FocusLeft:
        emit q->focusLeftRequested();
        break;
    case ColumnCommand::FocusRight:
        emit q->focusRightRequested();
        break;
    case ColumnCommand::MoveUp:
        moveUp();
        break;
    case ColumnCommand::MoveDown:
        moveDown();
        break;
    case ColumnCommand::PreviewPicture:
        previewSelectedPicture();
        break;
    case ColumnCommand::Typing:
        break;
    }
    return true;
}

// Text notes have nothing to show; Space on them is swallowed like other typing.
void NoteColumn::Private::previewSelectedPicture() {
    const NodePtr node = q->selectedNode();
    if (node && node->imageIdentifier())
        emit q->picturePreviewRequested(node);
}

void NoteColumn::Private::moveUp() {
    if (!model->representedNode() || !addButton->hasFocus() || rowCount() == 0)
        return;
    q->selectRow(rowCount() - 1);
    listView->setFocus(Qt::OtherFocusReason);
}

void NoteColumn::Private::moveDown() {
    if (!model->representedNode() || addButton->hasFocus())
        return;
    listView->selectionModel()->clearSelection();
    addButton->setFocus(Qt::OtherFocusReason);
}

void NoteColumn::Private::deleteSelectedNode() {
    const int row = listView->selectedRow();
    if (!model->representedNode() || !isValidRow(row))
        return;
    const NodePtr node = model->nodeAt(row);
    if (!node || !document)
        return;
    if (!node->isEmpty() && prompts.confirmDelete && !prompts.confirmDelete(q))
        return;
    document->userDidDelete(*node);
}

void NoteColumn::Private::addNewNodeAtIndex(std::size_t index) {
    const NodePtr& parent = model->representedNode();
    if (!parent || temporaryNode)
        return;
    // The one edit that bypasses the document: the note sits among the children, unrecorded,
    // until its editor is done; only then is it recorded, with its text.
    temporaryNode = NotebookNode::create(parent->identifier(), std::string());
    temporaryRowShown = false;
    auto& children = parent->children();
    children.insert(children.begin() +
                        static_cast<std::ptrdiff_t>(std::min(index, children.size())),
                    temporaryNode);
    QTimer::singleShot(0, q, [this, node = temporaryNode] {
        if (temporaryNode != node)
            return;
        const auto& current = model->representedNode()->children();
        const auto found = std::find(current.begin(), current.end(), node);
        if (found == current.end())
            return;
        const int row = static_cast<int>(found - current.begin());
        model->insertRowAt(row);
        temporaryRowShown = true;
        listView->scrollTo(model->index(row));
        updateUI();
        showEditNode(node);
    });
}

std::size_t NoteColumn::Private::removeTemporaryNode() {
    auto& children = model->representedNode()->children();
    const auto found = std::find(children.begin(), children.end(), temporaryNode);
    const auto index = static_cast<std::size_t>(found - children.begin());
    if (found != children.end()) {
        children.erase(found);
        if (temporaryRowShown)
            model->removeRowAt(static_cast<int>(index));
    }
    temporaryNode.reset();
    temporaryRowShown = false;
    return std::min(index, children.size());
}

void NoteColumn::Private::showEditNode(const NodePtr& node) {
    // Parented to the column until the navigation places it.
    auto* editor = new NoteEditorPanel(q);
    editor->hide();
    editor->setNote(node);
    QObject::connect(
        editor, &NoteEditorPanel::finished, q,
        [this](const NodePtr& edited, const std::string& text) { editorFinished(edited, text); });
    QObject::connect(editor, &NoteEditorPanel::cancelled, q,
                     [this](const NodePtr& edited) { editorCancelled(edited); });
    emit q->editorRequested(editor);
}

void NoteColumn::Private::editorFinished(const NodePtr& node, const std::string& text) {
    const NodePtr represented = model->representedNode();
    if (!represented)
        return;
    if (temporaryNode && node == temporaryNode) {
        const NodePtr newNode = temporaryNode;
        newNode->setText(text);
        const std::size_t index = removeTemporaryNode();
        // Recorded whatever its text, an empty one too; the row comes back with the update.
        if (document)
            document->userDidAdd(*newNode, *represented, static_cast<long>(index));
        QTimer::singleShot(0, q, [this, row = static_cast<int>(index)] { q->selectRow(row); });
    } else if (document && node) {
        document->userDidModify(*node, text);
    }
    updateUI();
    emit q->editorDone();
}

void NoteColumn::Private::editorCancelled(const NodePtr& node) {
    if (temporaryNode && node == temporaryNode && model->representedNode())
        removeTemporaryNode();
    updateUI();
    emit q->editorDone();
}

void NoteColumn::Private::scrollIntoView() {
    for (QWidget* widget = q->parentWidget(); widget; widget = widget->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(widget)) {
            area->ensureWidgetVisible(q, 0, 0);
            return;
        }
    }
}

} // namespace quillery
