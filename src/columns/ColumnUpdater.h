#pragma once

namespace quillery {

class NoteListView;
class NodeListModel;
class NodeRowDelegate;
class Document;
struct DocumentUpdate;

// Turns one document update into the one row operation it implies for a column: a row inserted,
// removed, moved or redrawn. The tree already holds the new state when an update arrives; the
// list still shows the old one until apply() has run.
class ColumnUpdater {
public:
    ColumnUpdater(const Document& document, NodeListModel& model, NoteListView& view,
                  NodeRowDelegate& rows);

    void apply(const DocumentUpdate& update);

private:
    bool isParentOf(const DocumentUpdate& update) const;
    void insertRow(int row);
    // Removes the row; the selection stays at the same position, moves up when the last row
    // was selected, and stays empty when nothing was selected or the list became empty.
    void removeRow(int row);
    void refreshRowShowingParentOf(const DocumentUpdate& update);

    const Document& m_document;
    NodeListModel& m_model;
    NoteListView& m_view;
    NodeRowDelegate& m_rows;
};

} // namespace quillery
