#pragma once

#include "document/PictureCodec.h"

#include <QImage>

namespace quillery {

// A picture decoded by the app's codec, as the views draw it.
class QtPicture : public Picture {
public:
    explicit QtPicture(QImage image)
        : m_image(std::move(image)) {}

    int width() const override { return m_image.width(); }
    int height() const override { return m_image.height(); }
    const QImage& image() const { return m_image; }

    // The app's image behind a core picture, or a null image for pictures of another codec.
    static QImage imageOf(const PicturePtr& picture) {
        auto* qtPicture = dynamic_cast<const QtPicture*>(picture.get());
        return qtPicture ? qtPicture->image() : QImage();
    }

private:
    QImage m_image;
};

} // namespace quillery
