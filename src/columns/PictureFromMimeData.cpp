#include "columns/PictureFromMimeData.h"

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
std::optional<DroppedPicture> encodedPicture(const QImage& image) {
    if (image.isNull())
        return std::nullopt;
    if (auto jpeg = encode(onWhite(image), "jpeg"))
        return DroppedPicture{shownPicture(image), *jpeg, QStringLiteral("jpg")};
    if (auto png = encode(image, "png"))
        return DroppedPicture{shownPicture(image), *png, QStringLiteral("png")};
    if (auto tiff = encode(image, "tiff"))
        return DroppedPicture{shownPicture(image), *tiff, QStringLiteral("tiff")};
    return std::nullopt;
}

} // namespace

QStringList pictureMimeTypes(const QMimeData& data) {
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

bool hasPictureType(const QMimeData& data) {
    return !pictureMimeTypes(data).isEmpty();
}

std::optional<DroppedPicture> pictureFromMimeData(const QMimeData& data) {
    for (const QString& type : pictureMimeTypes(data)) {
        QImage image;
        QByteArray original;
        if (type == kQtImageType) {
            image = qvariant_cast<QImage>(data.imageData());
        } else {
            original = data.data(type);
            if (!original.isEmpty())
                image = decodePicture(original, PictureSize::Full);
        }
        if (image.isNull())
            continue;
        if (auto encoded = encodedPicture(image))
            return encoded;
        // No encoder took it: keep the bytes as they came, if there are any.
        if (!original.isEmpty())
            return DroppedPicture{shownPicture(image), original, QStringLiteral("tiff")};
    }
    return std::nullopt;
}

} // namespace quillery
