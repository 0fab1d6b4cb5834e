#pragma once

namespace quillery {

class Identifier;
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
    // Removes the row. The selection stays on its note when another row goes; when the selected
    // row goes it stays at the same position, moves up when the last row was selected, and stays
    // empty when the list became empty.
    void removeRow(int row);
    void refreshRowShowingParentOf(const DocumentUpdate& update);
    // The row showing the note, whose number of children changed, if this column shows it.
    void refreshCount(const Identifier& note);

    const Document& m_document;
    NodeListModel& m_model;
    NoteListView& m_view;
    NodeRowDelegate& m_rows;
};

} // namespace quillery
