#pragma once

#include "model/NotebookNode.h"

#include <QAbstractListModel>

#include <memory>
#include <vector>

namespace quillery {

class ColumnDropHandler;
class Document;

// The rows of one column: the children of the parent note, in order. The model keeps its
// own list of the shown children, changed only by the row operations below, because the
// document changes the children before it announces the change: until the row operation the
// list must still see the old rows. Drags carry one note; drops are decided and performed by the
// column's drop handler.
class NodeListModel : public QAbstractListModel {
    Q_OBJECT

public:
    explicit NodeListModel(Document* document, QObject* parent = nullptr);
    ~NodeListModel() override;

    const NodePtr& parentNote() const { return m_parentNote; }
    // Resets the rows to the node's children.
    void setParentNote(NodePtr node);

    // The child shown at the row, or null.
    NodePtr nodeAt(int row) const;
    // The first row whose child has the identifier, or -1.
    int rowShowing(const Identifier& identifier) const;

    // One row operation each; the parent note's children must already hold the new state.
    void insertRowAt(int row);
    void removeRowAt(int row);
    // `to` is the row's index once moved.
    void moveRow(int from, int to);
    void refreshRow(int row);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    // What dropping the data there would do: move, copy or nothing.
    Qt::DropAction dropAction(const QMimeData& data, int row, const QModelIndex& parent) const;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
    Qt::DropActions supportedDropActions() const override;
    Qt::DropActions supportedDragActions() const override;

signals:
    // A drop moved or added the note (a paste does not count); sent on the turn after the drop.
    void noteDropped(NodePtr node);
    // A drop made a note that wants its editor; sent on the turn after the drop.
    void noteToEditAfterDrop(NodePtr node);

private:
    struct DropPlace;
    void reload();
    DropPlace dropPlace(int row, const QModelIndex& parent) const;
    void editAfterDrop(NodePtr note);

    Document* m_document;
    std::unique_ptr<ColumnDropHandler> m_dropHandler;
    NodePtr m_parentNote;
    std::vector<NodePtr> m_rows;
};

} // namespace quillery
