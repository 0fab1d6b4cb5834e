#include "columns/NoteMimeData.h"

#include "columns/ColumnDropHandler.h"
#include "document/Document.h"
#include "outline/NoteWalk.h"
#include "outline/OutlineExport.h"

#include <QFile>

#include <sstream>

namespace quillery {

namespace {

const QString kNotesType = QString::fromLatin1(kNotesMimeType);
const QString kTextType = QStringLiteral("text/plain");
const QString kHtmlType = QStringLiteral("text/html");

std::string pictureMimeType(std::string_view extension) {
    if (extension == "jpg" || extension == "jpeg")
        return "image/jpeg";
    if (extension == "png")
        return "image/png";
    return "image/tiff";
}

// A picture inline in the page, so the page needs no file of the notebook; none when its file
// cannot be read (the page then names the picture).
std::optional<std::string> dataAddress(const PictureView& picture) {
    QByteArray bytes(reinterpret_cast<const char*>(picture.bytes.data()),
                     static_cast<qsizetype>(picture.bytes.size()));
    if (bytes.isEmpty()) {
        QFile file(QString::fromStdString(picture.file.string()));
        if (!file.open(QIODevice::ReadOnly))
            return std::nullopt;
        bytes = file.readAll();
    }
    return "data:" + pictureMimeType(picture.fileExtension) + ";base64," +
           bytes.toBase64().toStdString();
}

QByteArray exported(const Outline& outline, ExportFormat format) {
    ExportOptions options;
    if (!outline.empty()) {
        const std::string& first = outline.notes().front().text;
        options.title = first.substr(0, first.find('\n'));
    }
    options.pictureSource = dataAddress;
    std::ostringstream out;
    exportOutline(outline, format, options, out);
    const std::string text = std::move(out).str();
    return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

NoteMimeData::NoteMimeData(const Document& document, const NotebookNode& note, bool cut) {
    m_notes.notebook = document.sessionIdentifier();
    if (cut)
        m_notes.cutNote = note.identifier();
    m_notes.outline = note_walk::outlineFromNotes(document, note);
    setData(QString::fromLatin1(kNodeDragAndDropDataType),
            QByteArray::fromStdString(note.identifier().toString()));
    setData(QString::fromLatin1(kNotebookDragAndDropDataType),
            QByteArray::fromStdString(document.sessionIdentifier().toString()));
}

QStringList NoteMimeData::formats() const {
    return QMimeData::formats() << kNotesType << kTextType << kHtmlType;
}

QVariant NoteMimeData::retrieveData(const QString& type, QMetaType preferredType) const {
    if (type != kNotesType && type != kTextType && type != kHtmlType)
        return QMimeData::retrieveData(type, preferredType);
    const QByteArray bytes = made(type);
    if (preferredType.id() == QMetaType::QString)
        return QString::fromUtf8(bytes);
    return bytes;
}

QByteArray NoteMimeData::made(const QString& type) const {
    auto found = m_made.find(type);
    if (found == m_made.end()) {
        QByteArray bytes;
        if (type == kNotesType)
            bytes = m_notes.toBytes();
        else
            bytes = exported(m_notes.outline,
                             type == kTextType ? ExportFormat::text : ExportFormat::html);
        found = m_made.insert(type, bytes);
    }
    return *found;
}

} // namespace quillery
