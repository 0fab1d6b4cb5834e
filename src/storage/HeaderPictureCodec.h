#pragma once

#include "document/PictureCodec.h"

#include <string>

namespace quillery {

// A picture known only by its file header.
class HeaderPicture : public Picture {
public:
    HeaderPicture(std::string format, int width, int height);
    int width() const override { return m_width; }
    int height() const override { return m_height; }
    // "png", "jpeg", "tiff", "gif", "bmp" or "webp".
    const std::string& format() const { return m_format; }

private:
    std::string m_format;
    int m_width;
    int m_height;
};

// Recognises PNG, JPEG, TIFF, GIF, BMP and WebP by their headers and reads the size from the
// header where it is stored plainly (0 when not found). It decodes no pixels, so it accepts a file
// whose header is sound even when the rest is damaged; tools without a GUI toolkit use it, the
// app has a real decoder. There is no placeholder picture.
class HeaderPictureCodec : public PictureCodec {
public:
    PicturePtr decode(std::span<const std::uint8_t> bytes) const override;
    PicturePtr placeholder() const override { return nullptr; }
};

} // namespace quillery
