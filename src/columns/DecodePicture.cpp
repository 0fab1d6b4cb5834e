#include "columns/DecodePicture.h"

#include <QBuffer>
#include <QImageReader>

namespace quillery {

namespace {

// Qt refuses pictures over 128 MB by default, about 33 megapixels: an ordinary phone photo. The
// limit covers a 20000 x 20000 picture at four bytes a pixel.
constexpr int kDecodeLimitMegabytes = 2048;

bool isLargerThanShown(QSize size) {
    return size.width() > kMaxShownPictureSide || size.height() > kMaxShownPictureSide;
}

} // namespace

QImage decodePicture(const QByteArray& bytes, PictureSize size) {
    QImageReader::setAllocationLimit(kDecodeLimitMegabytes);
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QSize full = reader.size();
    if (size == PictureSize::Shown && full.isValid() && isLargerThanShown(full)) {
        reader.setScaledSize(
            full.scaled(kMaxShownPictureSide, kMaxShownPictureSide, Qt::KeepAspectRatio));
    }
    return reader.read();
}

QSize shownPictureSize(const QByteArray& bytes) {
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    QSize size = reader.size();
    if (!size.isValid() || size.isEmpty())
        return QSize();
    if (reader.transformation() & QImageIOHandler::TransformationRotate90)
        size.transpose();
    return isLargerThanShown(size)
               ? size.scaled(kMaxShownPictureSide, kMaxShownPictureSide, Qt::KeepAspectRatio)
               : size;
}

QImage shownPicture(const QImage& picture) {
    if (!isLargerThanShown(picture.size()))
        return picture;
    return picture.scaled(kMaxShownPictureSide, kMaxShownPictureSide, Qt::KeepAspectRatio,
                          Qt::SmoothTransformation);
}

} // namespace quillery
