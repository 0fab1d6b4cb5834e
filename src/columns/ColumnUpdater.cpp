#include "columns/ColumnUpdater.h"

#include "columns/NodeListModel.h"
#include "columns/NodeRowDelegate.h"
#include "columns/NoteListView.h"
#include "document/Document.h"

namespace quillery {

namespace {

int toRow(std::size_t index) {
    return static_cast<int>(index);
}

} // namespace

ColumnUpdater::ColumnUpdater(const Document& document, NodeListModel& model, NoteListView& view,
                             NodeRowDelegate& rows)
    : m_document(document)
    , m_model(model)
    , m_view(view)
    , m_rows(rows) {
}

bool ColumnUpdater::isParentOf(const DocumentUpdate& update) const {
    return update.node->parentIdentifier() == m_model.parentNote()->identifier();
}

void ColumnUpdater::apply(const DocumentUpdate& update) {
    const NodePtr& parent = m_model.parentNote();
    if (!parent || !update.node)
        return;
    switch (update.type) {
    case NodeUpdateType::changedText:
        if (isParentOf(update)) {
            const int row = m_model.rowShowing(update.node->identifier());
            if (row >= 0) {
                m_rows.invalidate(update.node->identifier());
                m_model.refreshRow(row);
                emit m_rows.sizeHintChanged(m_model.index(row));
            }
        }
        break;
    case NodeUpdateType::insertedNode:
        if (isParentOf(update)) {
            if (!update.newChildIndex)
                return;
            // The identifier may have been measured before, as a new note being typed.
            m_rows.invalidate(update.node->identifier());
            insertRow(toRow(*update.newChildIndex));
        } else {
            refreshRowShowingParentOf(update);
        }
        break;
    case NodeUpdateType::destroyedNode:
        if (isParentOf(update) && update.oldChildIndex)
            removeRow(toRow(*update.oldChildIndex));
        else
            refreshCount(update.node->parentIdentifier());
        break;
    case NodeUpdateType::movedWithinParent:
        if (isParentOf(update) && update.oldChildIndex && update.newChildIndex)
            m_model.moveRow(toRow(*update.oldChildIndex), toRow(*update.newChildIndex));
        break;
    case NodeUpdateType::changedParent: {
        if (!update.oldParentIdentifier || !update.newParentIdentifier || !update.oldChildIndex ||
            !update.newChildIndex) {
            return;
        }
        if (parent->identifier() == *update.oldParentIdentifier) {
            removeRow(toRow(*update.oldChildIndex));
        } else if (parent->identifier() == *update.newParentIdentifier) {
            m_rows.invalidate(update.node->identifier());
            insertRow(toRow(*update.newChildIndex));
        }
        // Rows showing either parent have a new count of children.
        for (const Identifier* either :
             {&*update.newParentIdentifier, &*update.oldParentIdentifier}) {
            refreshCount(*either);
        }
        break;
    }
    case NodeUpdateType::reloadedTree:
        // The window rebuilds its columns from the new tree.
        break;
    }
}

void ColumnUpdater::insertRow(int row) {
    m_model.insertRowAt(row);
    m_view.scrollTo(m_model.index(row));
}

void ColumnUpdater::removeRow(int row) {
    int selected = m_view.selectedRow();
    m_model.removeRowAt(row);
    // The selection model keeps a selected note that was not removed, wherever it now stands.
    if (selected != row)
        return;
    const int count = m_model.rowCount();
    if (selected == count)
        selected = count - 1;
    if (selected >= 0 && selected < count) {
        m_view.selectionModel()->setCurrentIndex(m_model.index(selected),
                                                 QItemSelectionModel::ClearAndSelect);
    }
}

void ColumnUpdater::refreshRowShowingParentOf(const DocumentUpdate& update) {
    if (m_document.node(update.node->parentIdentifier()))
        refreshCount(update.node->parentIdentifier());
}

void ColumnUpdater::refreshCount(const Identifier& note) {
    const int row = m_model.rowShowing(note);
    if (row < 0)
        return;
    // The count takes room from the text beside it, so the row may change height.
    m_rows.invalidate(note);
    m_model.refreshRow(row);
    emit m_rows.sizeHintChanged(m_model.index(row));
}

} // namespace quillery
