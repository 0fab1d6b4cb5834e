#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QImage>

namespace quillery::testing {

// The picture's bytes in a file format Qt writes ("png", "jpeg", "tiff", "bmp"…).
inline QByteArray encoded(const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

} // namespace quillery::testing
