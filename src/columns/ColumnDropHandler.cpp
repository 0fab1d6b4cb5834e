#include "columns/ColumnDropHandler.h"

#include "columns/DecodePicture.h"
#include "columns/PictureFromMimeData.h"
#include "columns/QtPicture.h"
#include "document/Diagnostics.h"
#include "document/Document.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QMimeData>
#include <QStringDecoder>
#include <QUrl>

#include <algorithm>
#include <memory>

namespace quillery {

namespace {

const QString kNodeType = QString::fromLatin1(kNodeDragAndDropDataType);
const QString kNotebookType = QString::fromLatin1(kNotebookDragAndDropDataType);

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

    const NodePtr dragged = document.notebookNode(identifier);
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

// Where a picture dropped at (row, position) goes: inside the row's note, after its children, or
// into the column before the row.
struct Place {
    NodePtr parent;
    long index = 0;
};

std::optional<Place> pictureDropPlace(const NodePtr& parentNote, int row, DropPosition position) {
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

// A web address copied as plain text, as browsers copy one from their address bar, offered as an
// address. Only a lone http or https address counts, so ordinary text is still not pasted.
std::unique_ptr<QMimeData> addressCopiedAsText(const QMimeData& data) {
    if (data.hasUrls() || !data.hasText() || hasPictureType(data))
        return nullptr;
    const QString text = data.text().trimmed();
    if (std::ranges::any_of(text, [](QChar c) { return c.isSpace(); }))
        return nullptr;
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty() ||
        (url.scheme() != QStringLiteral("http") && url.scheme() != QStringLiteral("https"))) {
        return nullptr;
    }
    auto address = std::make_unique<QMimeData>();
    address->setUrls({url});
    return address;
}

} // namespace

ColumnDropHandler::ColumnDropHandler(Document& document)
    : m_document(document) {
}

QMimeData* ColumnDropHandler::mimeDataForNode(const NotebookNode& node) const {
    auto* data = new QMimeData;
    data->setData(kNodeType, QByteArray::fromStdString(node.identifier().toString()));
    data->setData(kNotebookType,
                  QByteArray::fromStdString(m_document.sessionIdentifier().toString()));
    return data;
}

Qt::DropAction ColumnDropHandler::validateDrop(const NodePtr& parentNote, const QMimeData& data,
                                               int row, DropPosition position) const {
    if (!parentNote || data.formats().isEmpty())
        return Qt::IgnoreAction;
    if (auto note = draggedNote(data, m_document)) {
        return note->fromThisNotebook &&
                       planNoteDrop(m_document, *parentNote, note->identifier, row, position)
                   ? Qt::MoveAction
                   : Qt::IgnoreAction;
    }
    if (hasPictureType(data))
        return Qt::CopyAction;
    if (droppedUrl(data))
        return Qt::CopyAction;
    return Qt::IgnoreAction;
}

ColumnDropHandler::Outcome ColumnDropHandler::acceptDrop(const NodePtr& parentNote,
                                                         const QMimeData& data, int row,
                                                         DropPosition position) {
    if (!parentNote || data.formats().isEmpty())
        return {};
    NotebookNode& column = *parentNote;

    if (auto note = draggedNote(data, m_document)) {
        if (!note->fromThisNotebook)
            return {};
        const auto move = planNoteDrop(m_document, column, note->identifier, row, position);
        if (!move)
            return {};
        if (move->newParent)
            m_document.userDidMove(*move->note, *move->newParent, move->index);
        else
            m_document.userDidMove(*move->note, *move->index);
        return {true, nullptr};
    }

    if (hasPictureType(data)) {
        const auto picture = pictureFromMimeData(data);
        const auto place = pictureDropPlace(parentNote, row, position);
        if (!picture || !place)
            return {};
        std::optional<std::string> url;
        if (auto address = droppedUrl(data); address && !address->isLocalFile())
            url = absoluteString(*address);
        addNode(*place->parent, picture->image, picture->imageData, url, picture->fileExtension,
                place->index);
        return {true, nullptr};
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
                const auto place = pictureDropPlace(parentNote, row, position);
                if (!place)
                    return {};
                addNode(*place->parent, image, bytes, std::nullopt,
                        fileExtensionForPictureFile(*address, bytes), place->index);
                return {true, nullptr};
            }
        }
    }

    const NodePtr note =
        NotebookNode::create(column.identifier(), absoluteString(*address) + "\n\n");
    m_document.userDidAdd(*note, column, static_cast<long>(column.children().size()));
    return {true, m_document.notebookNode(note->identifier())};
}

bool ColumnDropHandler::canPaste(const NodePtr& parentNote, const QMimeData& data) const {
    if (!parentNote)
        return false;
    const auto address = addressCopiedAsText(data);
    return validateDrop(parentNote, address ? *address : data, rowCount(*parentNote),
                        DropPosition::Above) == Qt::CopyAction;
}

ColumnDropHandler::Outcome ColumnDropHandler::paste(const NodePtr& parentNote,
                                                    const QMimeData& data) {
    if (!canPaste(parentNote, data))
        return {};
    const auto address = addressCopiedAsText(data);
    return acceptDrop(parentNote, address ? *address : data, rowCount(*parentNote),
                      DropPosition::Above);
}

void ColumnDropHandler::addNode(const NotebookNode& toParent, const QImage& image,
                                const QByteArray& originalData, std::optional<std::string> url,
                                const QString& fileExtension, long at) {
    std::vector<std::uint8_t> bytes(originalData.begin(), originalData.end());
    const Identifier key = m_document.addImage(std::make_shared<QtPicture>(image), std::move(bytes),
                                               fileExtension.toStdString());
    const NodePtr note =
        NotebookNode::create(toParent.identifier(), std::string(), key, std::move(url));
    m_document.userDidAdd(*note, toParent, at);
}

} // namespace quillery
