#include "columns/ImageAndDataFromPasteBoard.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>
#include <QMimeData>

namespace quillery {

namespace {

const QString kTiffType = QStringLiteral("image/tiff");
const QString kPngType = QStringLiteral("image/png");
const QString kQtImageType = QStringLiteral("application/x-qt-image");

std::optional<QByteArray> encode(const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    if (!writer.write(image) || bytes.isEmpty())
        return std::nullopt;
    return bytes;
}

} // namespace

QStringList PictureMimeTypes(const QMimeData& data) {
    const QStringList offered = data.formats();
    QStringList types;
    for (const QString& type : {kTiffType, kPngType, kQtImageType}) {
        if (offered.contains(type) || (type == kQtImageType && data.hasImage()))
            types.append(type);
    }
    const QList<QByteArray> readable = QImageReader::supportedMimeTypes();
    for (const QString& type : offered) {
        if (!types.contains(type) && readable.contains(type.toUtf8()))
            types.append(type);
    }
    return types;
}

QImage DecodePicture(const QByteArray& bytes) {
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    return reader.read();
}

bool HasPictureType(const QMimeData& data) {
    return !PictureMimeTypes(data).isEmpty();
}

std::optional<PasteboardPicture> EncodedPicture(const QImage& image) {
    if (image.isNull())
        return std::nullopt;
    if (auto jpeg = encode(image, "jpeg"))
        return PasteboardPicture{image, *jpeg, QStringLiteral("jpg")};
    if (auto png = encode(image, "png"))
        return PasteboardPicture{image, *png, QStringLiteral("png")};
    if (auto tiff = encode(image, "tiff"))
        return PasteboardPicture{image, *tiff, QStringLiteral("tiff")};
    return std::nullopt;
}

std::optional<PasteboardPicture> ImageAndDataFromPasteBoard(const QMimeData& data) {
    for (const QString& type : PictureMimeTypes(data)) {
        QImage image;
        QByteArray original;
        if (type == kQtImageType) {
            image = qvariant_cast<QImage>(data.imageData());
        } else {
            original = data.data(type);
            if (!original.isEmpty())
                image = DecodePicture(original);
        }
        if (image.isNull())
            continue;
        if (auto encoded = EncodedPicture(image))
            return encoded;
        // No encoder took it: keep the bytes as they came, if there are any.
        if (!original.isEmpty())
            return PasteboardPicture{image, original, QStringLiteral("tiff")};
    }
    return std::nullopt;
}

} // namespace quillery
