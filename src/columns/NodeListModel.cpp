#include "columns/NodeListModel.h"

#include "columns/ColumnDropHandler.h"
#include "columns/TransferredNotes.h"
#include "document/Document.h"

#include <QMimeData>
#include <QTimer>

#include <algorithm>

namespace quillery {

namespace {

// What assistive technology reads for a row; a note's first few hundred characters suffice.
constexpr qsizetype kMaxSpokenLength = 500;

} // namespace

struct NodeListModel::DropPlace {
    int row;
    DropPosition position;
};

NodeListModel::NodeListModel(Document* document, QObject* parent)
    : QAbstractListModel(parent)
    , m_document(document)
    , m_dropHandler(document ? std::make_unique<ColumnDropHandler>(*document) : nullptr) {
}

NodeListModel::~NodeListModel() = default;

void NodeListModel::setParentNote(NodePtr node) {
    m_parentNote = std::move(node);
    reload();
}

NodePtr NodeListModel::nodeAt(int row) const {
    if (row < 0 || row >= rowCount())
        return nullptr;
    return m_rows[static_cast<std::size_t>(row)];
}

int NodeListModel::rowShowing(const Identifier& identifier) const {
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i]->identifier() == identifier)
            return static_cast<int>(i);
    }
    return -1;
}

void NodeListModel::reload() {
    beginResetModel();
    m_rows = m_parentNote ? m_parentNote->children() : std::vector<NodePtr>();
    endResetModel();
}

void NodeListModel::insertRowAt(int row) {
    const auto index = static_cast<std::size_t>(row);
    if (!m_parentNote || row < 0 || index > m_rows.size() ||
        index >= m_parentNote->children().size()) {
        return;
    }
    beginInsertRows(QModelIndex(), row, row);
    m_rows.insert(m_rows.begin() + row, m_parentNote->children()[index]);
    endInsertRows();
}

void NodeListModel::removeRowAt(int row) {
    if (row < 0 || row >= rowCount())
        return;
    beginRemoveRows(QModelIndex(), row, row);
    m_rows.erase(m_rows.begin() + row);
    endRemoveRows();
}

void NodeListModel::moveRow(int from, int to) {
    if (from == to || from < 0 || to < 0 || from >= rowCount() || to >= rowCount())
        return;
    // Qt names the row before which the moved row goes, counted before the move.
    const int destination = to > from ? to + 1 : to;
    if (!beginMoveRows(QModelIndex(), from, from, QModelIndex(), destination))
        return;
    const auto first = m_rows.begin();
    if (to > from)
        std::rotate(first + from, first + from + 1, first + to + 1);
    else
        std::rotate(first + to, first + from, first + from + 1);
    endMoveRows();
}

void NodeListModel::refreshRow(int row) {
    if (row < 0 || row >= rowCount())
        return;
    const QModelIndex changed = index(row);
    emit dataChanged(changed, changed);
}

int NodeListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant NodeListModel::data(const QModelIndex& index, int role) const {
    const NodePtr node = nodeAt(index.row());
    if (!node || index.column() != 0)
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        if (node->imageIdentifier())
            return tr("Picture");
        return QString::fromStdString(node->text()).left(kMaxSpokenLength);
    case Qt::AccessibleDescriptionRole:
        return node->children().empty() ? QVariant()
                                        : QVariant(tr("%n sub-notes", nullptr,
                                                      static_cast<int>(node->children().size())));
    default:
        return {};
    }
}

Qt::ItemFlags NodeListModel::flags(const QModelIndex& index) const {
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled |
           Qt::ItemIsDropEnabled | Qt::ItemNeverHasChildren;
}

QStringList NodeListModel::mimeTypes() const {
    return {QString::fromLatin1(kNodeDragAndDropDataType),
            QString::fromLatin1(kNotebookDragAndDropDataType),
            QString::fromLatin1(kNotesMimeType),
            QStringLiteral("image/png"),
            QStringLiteral("image/tiff"),
            QStringLiteral("text/uri-list"),
            QStringLiteral("application/x-qt-image")};
}

QMimeData* NodeListModel::mimeData(const QModelIndexList& indexes) const {
    // Only the first dragged row travels, whatever else is selected.
    const NodePtr node = indexes.isEmpty() ? nullptr : nodeAt(indexes.first().row());
    return node && m_dropHandler ? m_dropHandler->mimeDataForNode(*node) : nullptr;
}

NodeListModel::DropPlace NodeListModel::dropPlace(int row, const QModelIndex& parent) const {
    if (parent.isValid())
        return {parent.row(), DropPosition::On};
    if (row < 0 || row > rowCount())
        return {rowCount(), DropPosition::Above};
    return {row, DropPosition::Above};
}

Qt::DropAction NodeListModel::dropAction(const QMimeData& data, int row,
                                         const QModelIndex& parent) const {
    if (!m_dropHandler || !m_parentNote)
        return Qt::IgnoreAction;
    const DropPlace place = dropPlace(row, parent);
    return m_dropHandler->validateDrop(m_parentNote, data, place.row, place.position);
}

bool NodeListModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int row, int,
                                    const QModelIndex& parent) const {
    return data && dropAction(*data, row, parent) != Qt::IgnoreAction;
}

bool NodeListModel::dropMimeData(const QMimeData* data, Qt::DropAction, int row, int,
                                 const QModelIndex& parent) {
    if (!m_dropHandler || !m_parentNote || !data)
        return false;
    const DropPlace place = dropPlace(row, parent);
    const ColumnDropHandler::Outcome outcome =
        m_dropHandler->acceptDrop(m_parentNote, *data, place.row, place.position);
    // On the next turn, once the list is done with the drop.
    if (outcome.added) {
        QTimer::singleShot(0, this, [this, note = outcome.added] { emit noteDropped(note); });
    }
    editAfterDrop(outcome.noteToEdit);
    return outcome.accepted;
}

void NodeListModel::editAfterDrop(NodePtr note) {
    if (note) {
        QTimer::singleShot(0, this,
                           [this, note = std::move(note)] { emit noteToEditAfterDrop(note); });
    }
}

Qt::DropActions NodeListModel::supportedDropActions() const {
    return Qt::CopyAction | Qt::MoveAction;
}

// A note moves within its notebook and is copied into another.
Qt::DropActions NodeListModel::supportedDragActions() const {
    return Qt::MoveAction | Qt::CopyAction;
}

} // namespace quillery
