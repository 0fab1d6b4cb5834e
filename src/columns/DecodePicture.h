#pragma once

#include <QByteArray>
#include <QImage>

namespace quillery {

// Nothing shows a picture larger than this on a side, so pictures are kept in memory at most this
// large: a 20000-pixel photo would otherwise hold 1.6 GB for as long as its notebook is open.
inline constexpr int kMaxShownPictureSide = 4096;

enum class PictureSize { Full, Shown };

// The picture the bytes hold, turned upright as its metadata says: at full size, or at most
// kMaxShownPictureSide on a side. Readers that can decode scaled down (JPEG) do so; the others
// hold the full-size picture once, while it is scaled. A null image when the bytes are not a
// picture Qt can read, or when the full-size picture would take more than 2 GiB.
QImage decodePicture(const QByteArray& bytes, PictureSize size = PictureSize::Shown);

// The size decodePicture gives the bytes at PictureSize::Shown, read from their header alone; an
// invalid size when the header does not tell it.
QSize shownPictureSize(const QByteArray& bytes);

// The picture scaled down to at most kMaxShownPictureSide on a side; smaller ones as they are.
QImage shownPicture(const QImage& picture);

} // namespace quillery
