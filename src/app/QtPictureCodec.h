#pragma once

#include "document/PictureCodec.h"

namespace quillery {

// Decodes pictures with Qt's image readers (JPEG, PNG, TIFF and whatever plugins are installed)
// into QtPicture values, turned upright by their orientation tag. A picture whose header tells its
// size is only read as far as that here and decoded when it is first drawn, off the main thread,
// so a notebook opens at once whatever its pictures; one that then fails to decode is drawn as
// the placeholder.
class QtPictureCodec : public PictureCodec {
public:
    QtPictureCodec();

    // Pictures larger than kMaxShownPictureSide on a side are decoded scaled down to it.
    PicturePtr decode(std::span<const std::uint8_t> bytes) const override;
    PicturePtr placeholder() const override { return m_placeholder; }

private:
    PicturePtr m_placeholder;
};

} // namespace quillery
