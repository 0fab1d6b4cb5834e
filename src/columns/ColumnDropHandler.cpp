#include "columns/ColumnDropHandler.h"

#include "base/Diagnostics.h"
#include "columns/DecodePicture.h"
#include "columns/NoteMimeData.h"
#include "columns/PictureFromMimeData.h"
#include "columns/QtPicture.h"
#include "document/Document.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QMimeData>
#include <QStringDecoder>
#include <QUrl>

namespace quillery {

namespace {

const QString kNodeType = QString::fromLatin1(kNodeDragAndDropDataType);
const QString kNotebookType = QString::fromLatin1(kNotebookDragAndDropDataType);
const QString kNotesType = QString::fromLatin1(kNotesMimeType);

// The identifier under the MIME type; none when the data is missing or is not UTF-8 text.
std::optional<Identifier> identifierIn(const QMimeData& data, const QString& type) {
    if (!data.hasFormat(type))
        return std::nullopt;
    const QByteArray bytes = data.data(type);
    if (bytes.isEmpty())
        return std::nullopt;
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(bytes);
    if (decoder.hasError() || text.isEmpty())
        return std::nullopt;
    return Identifier(bytes.toStdString());
}

// A dragged note: its identifier, and whether it comes from the document the drop lands in. Data
// without a readable note identifier is judged as a picture or an address instead.
struct DraggedNote {
    Identifier identifier;
    bool fromThisNotebook = false;
};

std::optional<DraggedNote> draggedNote(const QMimeData& data, const Document& document) {
    std::optional<Identifier> identifier = identifierIn(data, kNodeType);
    if (!identifier)
        return std::nullopt;
    return DraggedNote{std::move(*identifier),
                       identifierIn(data, kNotebookType) == document.sessionIdentifier()};
}

std::optional<QUrl> droppedUrl(const QMimeData& data) {
    if (!data.hasUrls())
        return std::nullopt;
    const QList<QUrl> urls = data.urls();
    if (urls.isEmpty() || !urls.first().isValid() || urls.first().isEmpty())
        return std::nullopt;
    return urls.first();
}

std::string absoluteString(const QUrl& url) {
    return url.toString(QUrl::FullyEncoded).toStdString();
}

// The row of the column's child with this identifier, or -1.
int rowOf(const NotebookNode& column, const Identifier& identifier) {
    const auto& children = column.children();
    for (std::size_t row = 0; row < children.size(); ++row) {
        if (children[row]->identifier() == identifier)
            return static_cast<int>(row);
    }
    return -1;
}

int rowCount(const NotebookNode& column) {
    return static_cast<int>(column.children().size());
}

bool isRow(const NotebookNode& column, int row) {
    return row >= 0 && row < rowCount(column);
}

// The move a dropped note makes: into a new parent (at an index, or last), or to another row of
// its own column (newParent null).
struct NoteMove {
    NodePtr note;
    const NotebookNode* newParent = nullptr;
    std::optional<std::size_t> index;
};

// Decides a note drop for validation and acceptance alike; none when the drop is refused: the note
// is gone, would land inside itself, on its current parent, or where it already is.
std::optional<NoteMove> planNoteDrop(const Document& document, const NotebookNode& column,
                                     const Identifier& identifier, int row, DropPosition position) {
    const auto& children = column.children();
    const int draggedRow = rowOf(column, identifier);
    if (draggedRow >= 0) {
        const NodePtr& dragged = children[static_cast<std::size_t>(draggedRow)];
        if (position == DropPosition::On) {
            if (row == draggedRow || !isRow(column, row))
                return std::nullopt;
            return NoteMove{dragged, children[static_cast<std::size_t>(row)].get(), std::nullopt};
        }
        if (row == draggedRow || row == draggedRow + 1 || row < 0 || row > rowCount(column))
            return std::nullopt;
        return NoteMove{dragged, nullptr, static_cast<std::size_t>(row)};
    }

    const NodePtr dragged = document.node(identifier);
    // The roots never move, whatever an outside drag claims.
    if (!dragged || dragged == document.rootNode() || dragged == document.deletedRootNode())
        return std::nullopt;
    if (position == DropPosition::On) {
        if (!isRow(column, row))
            return std::nullopt;
        const NodePtr& target = children[static_cast<std::size_t>(row)];
        if (document.isNode(*dragged, *target) ||
            target->identifier() == dragged->parentIdentifier()) {
            return std::nullopt;
        }
        return NoteMove{dragged, target.get(), std::nullopt};
    }
    if (dragged.get() == &column || row < 0 || row > rowCount(column) ||
        document.isNode(*dragged, column)) {
        return std::nullopt;
    }
    std::optional<std::size_t> index;
    if (row < rowCount(column))
        index = static_cast<std::size_t>(row);
    return NoteMove{dragged, &column, index};
}

// Where a copy dropped at (row, position) goes, a picture or notes of another notebook: inside the
// row's note, after its children, or into the column before the row.
struct Place {
    NodePtr parent;
    long index = 0;
};

std::optional<Place> copyDropPlace(const NodePtr& parentNote, int row, DropPosition position) {
    if (position == DropPosition::On) {
        if (!isRow(*parentNote, row))
            return std::nullopt;
        const NodePtr& target = parentNote->children()[static_cast<std::size_t>(row)];
        return Place{target, static_cast<long>(target->children().size())};
    }
    if (row < 0 || row > rowCount(*parentNote))
        return std::nullopt;
    return Place{parentNote, row};
}

// A picture file keeps its bytes, and an extension that names their format: from its address
// when that names PNG or JPEG, else from the bytes themselves, so a TIFF or GIF file is never
// stored under a name that claims another format.
QString fileExtensionForPictureFile(const QUrl& url, const QByteArray& bytes) {
    const QString address = url.toString(QUrl::FullyEncoded).toLower();
    if (address.contains(QStringLiteral(".png")))
        return QStringLiteral("png");
    if (address.contains(QStringLiteral(".jpeg")) || address.contains(QStringLiteral(".jpg")))
        return QStringLiteral("jpg");
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    const QString format = QString::fromLatin1(QImageReader::imageFormat(&buffer)).toLower();
    if (format == QStringLiteral("jpeg"))
        return QStringLiteral("jpg");
    return format.isEmpty() ? QStringLiteral("tiff") : format;
}

} // namespace

ColumnDropHandler::ColumnDropHandler(Document& document)
    : m_document(document) {
}

QMimeData* ColumnDropHandler::mimeDataForNode(const NotebookNode& node) const {
    return new NoteMimeData(m_document, node);
}

Qt::DropAction ColumnDropHandler::validateDrop(const NodePtr& parentNote, const QMimeData& data,
                                               int row, DropPosition position) const {
    if (!parentNote || data.formats().isEmpty())
        return Qt::IgnoreAction;
    const auto note = draggedNote(data, m_document);
    if (note && note->fromThisNotebook) {
        return planNoteDrop(m_document, *parentNote, note->identifier, row, position)
                   ? Qt::MoveAction
                   : Qt::IgnoreAction;
    }
    // The notes themselves are read only when dropped.
    if (data.hasFormat(kNotesType))
        return copyDropPlace(parentNote, row, position) ? Qt::CopyAction : Qt::IgnoreAction;
    if (note)
        return Qt::IgnoreAction;
    if (hasPictureType(data))
        return Qt::CopyAction;
    if (droppedUrl(data))
        return Qt::CopyAction;
    return Qt::IgnoreAction;
}

ColumnDropHandler::Outcome ColumnDropHandler::acceptDrop(const NodePtr& parentNote,
                                                         const QMimeData& data, int row,
                                                         DropPosition position) {
    return accept(parentNote, data, row, position, false);
}

ColumnDropHandler::Outcome ColumnDropHandler::pasteAt(const NodePtr& parentNote,
                                                      const QMimeData& data, int row) {
    return accept(parentNote, data, row, DropPosition::Above, true);
}

ColumnDropHandler::Outcome ColumnDropHandler::accept(const NodePtr& parentNote,
                                                     const QMimeData& data, int row,
                                                     DropPosition position, bool pasting) {
    if (!parentNote || data.formats().isEmpty())
        return {};
    const char* addName = pasting ? "Paste" : "Add Note";
    NotebookNode& column = *parentNote;

    // A paste takes notes on the clipboard as copies before it comes here (ColumnPasteHandler).
    const auto note = pasting ? std::nullopt : draggedNote(data, m_document);
    if (note && note->fromThisNotebook) {
        const auto move = planNoteDrop(m_document, column, note->identifier, row, position);
        if (!move)
            return {};
        if (move->newParent)
            m_document.userDidMove(*move->note, *move->newParent, move->index);
        else
            m_document.userDidMove(*move->note, *move->index);
        return {true, move->note, nullptr};
    }
    if (!pasting && data.hasFormat(kNotesType)) {
        const auto notes = TransferredNotes::in(data);
        const auto place = copyDropPlace(parentNote, row, position);
        if (!notes || !place)
            return {};
        const NodePtr added = notes->insert(m_document, *place->parent,
                                            static_cast<std::size_t>(place->index), "Copy Note");
        return {added != nullptr, added, nullptr};
    }
    if (note)
        return {};

    if (hasPictureType(data)) {
        const auto picture = pictureFromMimeData(data);
        const auto place = copyDropPlace(parentNote, row, position);
        if (!picture || !place)
            return {};
        std::optional<std::string> url;
        if (auto address = droppedUrl(data); address && !address->isLocalFile())
            url = absoluteString(*address);
        return {true,
                addPicture(*place->parent, picture->image, picture->imageData, url,
                           picture->fileExtension, place->index, addName),
                nullptr};
    }

    const auto address = droppedUrl(data);
    if (!address)
        return {};
    if (address->isLocalFile()) {
        QFile file(address->toLocalFile());
        if (!file.open(QIODevice::ReadOnly)) {
            diagnostics::writeLine("Couldn't load data at url " + absoluteString(*address) +
                                   "... just load string");
        } else {
            const QByteArray bytes = file.readAll();
            const QImage image = decodePicture(bytes);
            if (!image.isNull()) {
                const auto place = copyDropPlace(parentNote, row, position);
                if (!place)
                    return {};
                return {true,
                        addPicture(*place->parent, image, bytes, std::nullopt,
                                   fileExtensionForPictureFile(*address, bytes), place->index,
                                   addName),
                        nullptr};
            }
        }
    }

    // A dropped address goes to the end of the column wherever it was dropped; a pasted one goes
    // where pastes go.
    const long at = pasting && row >= 0 && row < rowCount(column)
                        ? row
                        : static_cast<long>(column.children().size());
    const NodePtr added =
        addNote(NotebookNode::create(column.identifier(), absoluteString(*address) + "\n\n"),
                column, at, addName);
    return {true, added, added};
}

NodePtr ColumnDropHandler::addNote(const NodePtr& note, const NotebookNode& toParent, long at,
                                   const char* actionName) {
    m_document.userDidEditTogether(actionName, [&] { m_document.add(*note, toParent, at); });
    return m_document.node(note->identifier());
}

NodePtr ColumnDropHandler::addPicture(const NotebookNode& toParent, const QImage& image,
                                      const QByteArray& originalData,
                                      std::optional<std::string> url, const QString& fileExtension,
                                      long at, const char* actionName) {
    std::vector<std::uint8_t> bytes(originalData.begin(), originalData.end());
    const Identifier key = m_document.addImage(std::make_shared<QtPicture>(image), std::move(bytes),
                                               fileExtension.toStdString());
    return addNote(NotebookNode::create(toParent.identifier(), std::string(), key, std::move(url)),
                   toParent, at, actionName);
}

} // namespace quillery
