#include "app/QtPictureCodec.h"

#include "columns/QtPicture.h"

#include <QBuffer>
#include <QImageReader>

// Resources compiled into a static library are only linked in when something refers to them.
// Q_INIT_RESOURCE must be used outside any namespace.
static void initAppResources() {
    Q_INIT_RESOURCE(resources);
}

namespace quillery {

QtPictureCodec::QtPictureCodec() {
    initAppResources();
    QImage image(QStringLiteral(":/placeholder.png"));
    if (!image.isNull()) {
        m_placeholder = std::make_shared<QtPicture>(std::move(image));
    }
}

PicturePtr QtPictureCodec::decode(std::span<const std::uint8_t> bytes) const {
    if (bytes.empty()) {
        return nullptr;
    }
    QByteArray data = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                              static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isValid() && (size.width() > kMaxSide || size.height() > kMaxSide)) {
        reader.setScaledSize(size.scaled(kMaxSide, kMaxSide, Qt::KeepAspectRatio));
    }
    QImage image;
    if (!reader.read(&image)) {
        return nullptr;
    }
    return std::make_shared<QtPicture>(std::move(image));
}

} // namespace quillery
