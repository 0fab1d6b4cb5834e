#pragma once

#include "columns/ColumnCommand.h"
#include "columns/ColumnPrompts.h"
#include "columns/ColumnUpdater.h"
#include "columns/NodeListModel.h"
#include "columns/NoteColumn.h"
#include "document/Document.h"

#include <cstddef>
#include <memory>

class QLabel;

namespace quillery {

class NoteListView;
class AddNoteButton;
class NodeRowDelegate;

// The state of one column and the steps behind its commands.
class NoteColumn::Private {
public:
    explicit Private(NoteColumn* column, Document* document);

    int rowCount() const { return model->rowCount(); }
    bool isValidRow(int row) const { return row >= 0 && row < rowCount(); }
    void updateUI();
    void selectionDidChange();
    void documentDidUpdate(const DocumentUpdate& update);
    bool perform(ColumnCommand command);
    void previewSelectedPicture();
    void moveUp();
    void moveDown();
    void deleteSelectedNode();
    void addNewNodeAtIndex(std::size_t index);
    void showEditNode(const NodePtr& node);
    void editorFinished(const NodePtr& node, const std::string& text);
    void editorCancelled(const NodePtr& node);
    // Takes the new note out of the children (and its row out of the list) again.
    std::size_t removeTemporaryNode();
    void scrollIntoView();

    NoteColumn* q;
    Document* document;
    NodeListModel* model;
    NodeRowDelegate* rows;
    NoteListView* listView;
    QLabel* noEntriesLabel;
    AddNoteButton* addButton;
    std::unique_ptr<ColumnUpdater> updater;
    ColumnPrompts prompts = ColumnPrompts::standard();
    int depth = 0;
    bool enabled = true;
    NodePtr temporaryNode;
    bool temporaryRowShown = false;
    bool selectionHandlingSuspended = false;
    Document::ObserverId observer = 0;
};

} // namespace quillery
