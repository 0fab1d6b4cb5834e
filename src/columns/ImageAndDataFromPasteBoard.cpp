#include "columns/ImageAndDataFromPasteBoard.h"

#include "columns/DecodePicture.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>
#include <QMimeData>
#include <QPainter>

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

QImage onWhite(const QImage& image) {
    if (!image.hasAlphaChannel())
        return image;
    QImage flat(image.size(), QImage::Format_RGB32);
    flat.fill(Qt::white);
    QPainter painter(&flat);
    painter.drawImage(0, 0, image);
    return flat;
}

// The picture encoded in the first of JPEG, PNG and TIFF that works, with its extension and the
// picture scaled down to the size shown; none when no encoder works (for example a null image).
// JPEG has no transparency, so transparent parts are laid on white rather than turning black.
std::optional<PasteboardPicture> EncodedPicture(const QImage& image) {
    if (image.isNull())
        return std::nullopt;
    if (auto jpeg = encode(onWhite(image), "jpeg"))
        return PasteboardPicture{ShownPicture(image), *jpeg, QStringLiteral("jpg")};
    if (auto png = encode(image, "png"))
        return PasteboardPicture{ShownPicture(image), *png, QStringLiteral("png")};
    if (auto tiff = encode(image, "tiff"))
        return PasteboardPicture{ShownPicture(image), *tiff, QStringLiteral("tiff")};
    return std::nullopt;
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

bool HasPictureType(const QMimeData& data) {
    return !PictureMimeTypes(data).isEmpty();
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
                image = DecodePicture(original, PictureSize::Full);
        }
        if (image.isNull())
            continue;
        if (auto encoded = EncodedPicture(image))
            return encoded;
        // No encoder took it: keep the bytes as they came, if there are any.
        if (!original.isEmpty())
            return PasteboardPicture{ShownPicture(image), original, QStringLiteral("tiff")};
    }
    return std::nullopt;
}

} // namespace quillery
