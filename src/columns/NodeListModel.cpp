#include "columns/NodeListModel.h"

#include "columns/ColumnDropHandler.h"
#include "document/Document.h"

#include <QMimeData>
#include <QTimer>

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

void NodeListModel::setRepresentedNode(NodePtr node) {
    m_representedNode = std::move(node);
    reload();
}

NodePtr NodeListModel::nodeAt(int row) const {
    if (!m_representedNode || row < 0 || row >= m_rowCount)
        return nullptr;
    const auto& children = m_representedNode->children();
    return static_cast<std::size_t>(row) < children.size() ? children[static_cast<std::size_t>(row)]
                                                           : nullptr;
}

int NodeListModel::rowShowing(const Identifier& identifier) const {
    if (!m_representedNode)
        return -1;
    const auto& children = m_representedNode->children();
    const std::size_t count = std::min(children.size(), static_cast<std::size_t>(m_rowCount));
    for (std::size_t i = 0; i < count; ++i) {
        if (children[i]->identifier() == identifier)
            return static_cast<int>(i);
    }
    return -1;
}

void NodeListModel::reload() {
    beginResetModel();
    m_rowCount = m_representedNode ? static_cast<int>(m_representedNode->children().size()) : 0;
    endResetModel();
}

void NodeListModel::insertRowAt(int row) {
    if (row < 0 || row > m_rowCount)
        return;
    beginInsertRows(QModelIndex(), row, row);
    ++m_rowCount;
    endInsertRows();
}

void NodeListModel::removeRowAt(int row) {
    if (row < 0 || row >= m_rowCount)
        return;
    beginRemoveRows(QModelIndex(), row, row);
    --m_rowCount;
    endRemoveRows();
}

void NodeListModel::moveRow(int from, int to) {
    if (from == to || from < 0 || to < 0 || from >= m_rowCount || to >= m_rowCount)
        return;
    // Qt names the row before which the moved row goes, counted before the move.
    const int destination = to > from ? to + 1 : to;
    if (beginMoveRows(QModelIndex(), from, from, QModelIndex(), destination))
        endMoveRows();
}

void NodeListModel::refreshRow(int row) {
    if (row < 0 || row >= m_rowCount)
        return;
    const QModelIndex changed = index(row);
    emit dataChanged(changed, changed);
}

void NodeListModel::refreshAllRows() {
    if (m_rowCount > 0)
        emit dataChanged(index(0), index(m_rowCount - 1));
}

int NodeListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_rowCount;
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
    return {QString::fromLatin1(kNodeDragAndDropDataType), QStringLiteral("image/png"),
            QStringLiteral("image/tiff"), QStringLiteral("text/uri-list"),
            QStringLiteral("application/x-qt-image")};
}

QMimeData* NodeListModel::mimeData(const QModelIndexList& indexes) const {
    // Only the first dragged row travels, whatever else is selected.
    const NodePtr node = indexes.isEmpty() ? nullptr : nodeAt(indexes.first().row());
    return node ? ColumnDropHandler::mimeDataForNode(*node) : nullptr;
}

NodeListModel::DropPlace NodeListModel::dropPlace(int row, const QModelIndex& parent) const {
    if (parent.isValid())
        return {parent.row(), DropPosition::On};
    if (row < 0 || row > m_rowCount)
        return {m_rowCount, DropPosition::Above};
    return {row, DropPosition::Above};
}

bool NodeListModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int row, int,
                                    const QModelIndex& parent) const {
    if (!m_dropHandler || !m_representedNode || !data)
        return false;
    const DropPlace place = dropPlace(row, parent);
    return m_dropHandler->validateDrop(m_representedNode, *data, place.row, place.position) !=
           Qt::IgnoreAction;
}

bool NodeListModel::dropMimeData(const QMimeData* data, Qt::DropAction, int row, int,
                                 const QModelIndex& parent) {
    if (!m_dropHandler || !m_representedNode || !data)
        return false;
    const DropPlace place = dropPlace(row, parent);
    const ColumnDropHandler::Outcome outcome =
        m_dropHandler->acceptDrop(m_representedNode, *data, place.row, place.position);
    if (outcome.noteToEdit) {
        QTimer::singleShot(0, this,
                           [this, note = outcome.noteToEdit] { emit noteToEditAfterDrop(note); });
    }
    return outcome.accepted;
}

Qt::DropActions NodeListModel::supportedDropActions() const {
    return Qt::CopyAction | Qt::MoveAction;
}

Qt::DropActions NodeListModel::supportedDragActions() const {
    return Qt::MoveAction;
}

} // namespace quillery
