#include "columns/QtPicture.h"

#include "columns/DecodePicture.h"
#include "columns/PictureDecoder.h"

namespace quillery {

QtPicture::QtPicture(QImage image)
    : m_size(image.size())
    , m_image(std::move(image)) {
}

QtPicture::QtPicture(QByteArray bytes, QSize size, QImage fallback)
    : m_size(size)
    , m_decoding(std::make_shared<Decoding>()) {
    m_decoding->bytes = std::move(bytes);
    m_decoding->fallback = std::move(fallback);
}

QImage QtPicture::image() const {
    if (!m_decoding)
        return m_image;
    std::lock_guard lock(m_decoding->mutex);
    if (!m_decoding->started) {
        m_decoding->started = true;
        PictureDecoder::instance().start([decoding = m_decoding] {
            QImage image = decodePicture(decoding->bytes);
            std::lock_guard done(decoding->mutex);
            decoding->image = image.isNull() ? decoding->fallback : std::move(image);
            decoding->bytes = QByteArray();
        });
    }
    return m_decoding->image;
}

QImage QtPicture::imageOf(const PicturePtr& picture) {
    auto* qtPicture = dynamic_cast<const QtPicture*>(picture.get());
    return qtPicture ? qtPicture->image() : QImage();
}

} // namespace quillery
