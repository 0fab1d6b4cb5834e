#pragma once

#include "document/PictureCodec.h"

#include <QByteArray>
#include <QImage>

#include <memory>
#include <mutex>

namespace quillery {

// A picture decoded by the app's codec, as the views draw it: decoded already, or kept as its
// file's bytes until it is first drawn and then decoded by the PictureDecoder, so that opening a
// notebook decodes no pixels.
class QtPicture : public Picture {
public:
    explicit QtPicture(QImage image);
    // `size` is the size the bytes decode to (read from their header); `fallback` is drawn when
    // they do not decode.
    QtPicture(QByteArray bytes, QSize size, QImage fallback);

    int width() const override { return m_size.width(); }
    int height() const override { return m_size.height(); }
    // The pixels; for a picture kept as bytes, null until its decoding (started by the first
    // call) is done, which PictureDecoder::decoded() announces.
    QImage image() const;

    // The app's image behind a core picture, or a null image for pictures of another codec.
    static QImage imageOf(const PicturePtr& picture);

private:
    struct Decoding {
        std::mutex mutex;
        QByteArray bytes;
        QImage fallback;
        QImage image;
        bool started = false;
    };

    QSize m_size;
    QImage m_image;
    std::shared_ptr<Decoding> m_decoding; // null for a picture decoded already
};

} // namespace quillery
