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
    // A copy: the caller's bytes are gone by the time the picture is drawn.
    QByteArray copy(reinterpret_cast<const char*>(bytes.data()),
                    static_cast<qsizetype>(bytes.size()));
    if (const QSize size = shownPictureSize(copy); size.isValid())
        return std::make_shared<QtPicture>(std::move(copy), size,
                                           QtPicture::imageOf(m_placeholder));
    QImage image = decodePicture(copy);
    if (image.isNull())
        return nullptr;
    return std::make_shared<QtPicture>(std::move(image));
}

} // namespace quillery
