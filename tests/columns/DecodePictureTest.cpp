#include "columns/DecodePicture.h"

#include "EncodedPicture.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

using testing::encoded;

// Qt's PNG reader cannot decode scaled down, and this picture takes 144 MB at full size: more than
// Qt allows by default, as ordinary photos from a phone do.
TEST(DecodePicture, APictureBeyondQtsDefaultLimitDecodesAtTheShownSizeOrInFull) {
    QImage large(8192, 4608, QImage::Format_RGB32);
    large.fill(Qt::darkGreen);
    const QByteArray png = encoded(large, "png");
    large = QImage();

    EXPECT_EQ(decodePicture(png).size(), QSize(kMaxShownPictureSide, 2304));
    EXPECT_EQ(decodePicture(png, PictureSize::Full).size(), QSize(8192, 4608));
}

TEST(DecodePicture, SmallPicturesKeepTheirSizeAndBrokenOnesGiveNothing) {
    QImage small(30, 20, QImage::Format_RGB32);
    small.fill(Qt::red);
    const QByteArray jpeg = encoded(small, "jpeg");

    EXPECT_EQ(decodePicture(jpeg).size(), QSize(30, 20));
    EXPECT_TRUE(decodePicture(QByteArray("\x89PNG\r\n\x1a\n broken", 16)).isNull());
    EXPECT_TRUE(decodePicture(QByteArray()).isNull());
}

} // namespace
} // namespace quillery
