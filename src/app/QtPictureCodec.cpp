#include "app/QtPictureCodec.h"

#include "columns/DecodePicture.h"
#include "columns/QtPicture.h"

// Resources compiled into a static library are only linked in when something refers to them.
// Q_INIT_RESOURCE must be used outside any namespace.
static void initAppResources() {
    Q_INIT_RESOURCE(resources);
}

namespace quillery {

QtPictureCodec::QtPictureCodec() {
    initAppResources();
    QImage image(QStringLiteral(":/placeholder.png"));
    if (!image.isNull())
        m_placeholder = std::make_shared<QtPicture>(std::move(image));
}

PicturePtr QtPictureCodec::decode(std::span<const std::uint8_t> bytes) const {
    if (bytes.empty())
        return nullptr;
    QImage image = decodePicture(QByteArray::fromRawData(
        reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())));
    if (image.isNull())
        return nullptr;
    return std::make_shared<QtPicture>(std::move(image));
}

} // namespace quillery
