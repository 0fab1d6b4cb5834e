#include "columns/TransferredNotes.h"

#include "document/Document.h"
#include "outline/OutlineInsertion.h"

#include <QBuffer>
#include <QDataStream>
#include <QFile>
#include <QImageReader>
#include <QMimeData>

namespace quillery {

namespace {

constexpr quint32 kMagic = 0x514E4F54; // "QNOT"
constexpr quint16 kVersion = 1;
constexpr QDataStream::Version kStreamVersion = QDataStream::Qt_6_0;
// Picture files larger than this travel without their bytes rather than fill the clipboard.
constexpr qint64 kMaxPictureBytes = qint64{1} << 30;

QByteArray bytesOf(std::string_view text) {
    return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
}

std::string textOf(const QByteArray& bytes) {
    return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

QByteArray pictureBytes(const OutlinePicture& picture) {
    if (!picture.bytes.empty())
        return QByteArray(reinterpret_cast<const char*>(picture.bytes.data()),
                          static_cast<qsizetype>(picture.bytes.size()));
    QFile file(QString::fromStdString(picture.file.string()));
    if (file.size() > kMaxPictureBytes || !file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

// The extensions a package keeps pictures under; anything else a payload claims is replaced by
// what the bytes are, so a name from outside never reaches the package's file names.
std::string storedExtension(const QByteArray& claimed, const QByteArray& bytes) {
    const QByteArray extension = claimed.toLower();
    if (extension == "png" || extension == "jpg" || extension == "tiff")
        return extension.toStdString();
    if (extension == "jpeg")
        return "jpg";
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    const QByteArray format = QImageReader::imageFormat(&buffer);
    if (format == "png")
        return "png";
    return format == "jpeg" ? "jpg" : "tiff";
}

} // namespace

QByteArray TransferredNotes::toBytes() const {
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(kStreamVersion);
    out << kMagic << kVersion << bytesOf(notebook.toString())
        << (cutNote ? bytesOf(cutNote->toString()) : QByteArray())
        << static_cast<quint64>(outline.size());
    for (const OutlineNote& note : outline.notes()) {
        out << static_cast<quint64>(note.depth) << bytesOf(note.text) << note.url.has_value()
            << (note.url ? bytesOf(*note.url) : QByteArray()) << note.picture.has_value();
        if (note.picture)
            out << bytesOf(note.picture->fileExtension) << pictureBytes(*note.picture);
    }
    return bytes;
}

std::optional<TransferredNotes> TransferredNotes::fromBytes(const QByteArray& bytes) {
    QDataStream in(bytes);
    in.setVersion(kStreamVersion);
    quint32 magic = 0;
    quint16 version = 0;
    QByteArray notebook;
    QByteArray cutNote;
    quint64 count = 0;
    in >> magic >> version >> notebook >> cutNote >> count;
    if (in.status() != QDataStream::Ok || magic != kMagic || version != kVersion ||
        notebook.isEmpty()) {
        return std::nullopt;
    }
    TransferredNotes notes;
    notes.notebook = Identifier(textOf(notebook));
    if (!cutNote.isEmpty())
        notes.cutNote = Identifier(textOf(cutNote));
    // Every note takes bytes of the payload, so a false count ends at the payload's end.
    for (quint64 i = 0; i < count; ++i) {
        quint64 depth = 0;
        QByteArray text;
        bool hasUrl = false;
        QByteArray url;
        bool hasPicture = false;
        in >> depth >> text >> hasUrl >> url >> hasPicture;
        std::optional<OutlinePicture> picture;
        if (hasPicture) {
            QByteArray extension;
            QByteArray data;
            in >> extension >> data;
            picture =
                OutlinePicture{{data.begin(), data.end()}, {}, storedExtension(extension, data)};
        }
        if (in.status() != QDataStream::Ok)
            return std::nullopt;
        notes.outline.add(static_cast<std::size_t>(depth), textOf(text),
                          hasUrl ? std::optional<std::string>(textOf(url)) : std::nullopt,
                          std::move(picture));
    }
    if (notes.outline.empty())
        return std::nullopt;
    return notes;
}

std::optional<TransferredNotes> TransferredNotes::in(const QMimeData& data) {
    const QString type = QString::fromLatin1(kNotesMimeType);
    if (!data.hasFormat(type))
        return std::nullopt;
    return fromBytes(data.data(type));
}

NodePtr TransferredNotes::insert(Document& document, const NotebookNode& parent, std::size_t at,
                                 const char* actionName) const {
    const NodePtr target = document.node(parent.identifier());
    if (!target)
        return nullptr;
    const NodePtr cut =
        cutNote && notebook == document.sessionIdentifier() ? document.node(*cutNote) : nullptr;
    if (cut && cut->parentIdentifier() == document.deletedRootNode()->identifier() &&
        cut != target && !document.isNode(*cut, *target)) {
        const auto& children = target->children();
        document.userDidEditTogether(actionName, [&] {
            document.move(*cut, *target,
                          at < children.size() ? std::optional<std::size_t>(at) : std::nullopt);
        });
        return document.node(*cutNote);
    }
    const std::vector<Identifier> added = insertOutline(
        document, outline, *target, std::min(at, target->children().size()), actionName);
    return added.empty() ? nullptr : document.node(added.front());
}

} // namespace quillery
