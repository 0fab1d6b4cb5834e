#include "columns/PictureFromMimeData.h"

#include "EncodedPicture.h"
#include "QtPrinters.h"
#include "columns/DecodePicture.h"

#include <QMimeData>

#include <gtest/gtest.h>

namespace quillery {
namespace {

QImage picture(QColor colour) {
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

using testing::encoded;

const QString kTiff = QStringLiteral("image/tiff");
const QString kPng = QStringLiteral("image/png");

TEST(PictureFromMimeData, PrefersTiffToPng) {
    QMimeData data;
    data.setData(kPng, encoded(picture(Qt::red), "png"));
    data.setData(kTiff, encoded(picture(Qt::blue), "tiff"));
    const auto result = pictureFromMimeData(data);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->image.pixelColor(0, 0), QColor(Qt::blue));
}

TEST(PictureFromMimeData, FallsBackToPngWhenTheTiffDoesNotDecode) {
    QMimeData data;
    data.setData(kTiff, QByteArray("garbage"));
    data.setData(kPng, encoded(picture(Qt::red), "png"));
    const auto result = pictureFromMimeData(data);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->image.pixelColor(0, 0), QColor(Qt::red));
}

TEST(PictureFromMimeData, StoresJpegFirst) {
    QMimeData data;
    data.setData(kPng, encoded(picture(Qt::red), "png"));
    const auto result = pictureFromMimeData(data);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->fileExtension, QStringLiteral("jpg"));
    EXPECT_TRUE(result->imageData.startsWith("\xFF\xD8"));
    QImage decoded;
    EXPECT_TRUE(decoded.loadFromData(result->imageData, "JPEG"));
    EXPECT_EQ(decoded.size(), QSize(4, 4));
}

TEST(PictureFromMimeData, TakesAnyPictureQtOffers) {
    QMimeData image;
    image.setImageData(picture(Qt::green));
    EXPECT_TRUE(hasPictureType(image));
    EXPECT_EQ(pictureFromMimeData(image)->fileExtension, QStringLiteral("jpg"));

    QMimeData bmp;
    bmp.setData(QStringLiteral("image/bmp"), encoded(picture(Qt::green), "bmp"));
    EXPECT_TRUE(hasPictureType(bmp));
    EXPECT_TRUE(pictureFromMimeData(bmp));
}

TEST(PictureFromMimeData, StoresTheFullPictureButKeepsTheShownSizeInMemory) {
    QImage wide(kMaxShownPictureSide + 904, 10, QImage::Format_RGB32);
    wide.fill(Qt::blue);
    QMimeData data;
    data.setImageData(wide);

    const auto taken = pictureFromMimeData(data);

    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->image.width(), kMaxShownPictureSide);
    EXPECT_EQ(decodePicture(taken->imageData, PictureSize::Full).width(), wide.width());
}

TEST(PictureFromMimeData, TransparentPartsOfAPictureStoredAsJpegAreWhite) {
    QImage clear(8, 8, QImage::Format_ARGB32);
    clear.fill(Qt::transparent);
    QMimeData data;
    data.setData(kPng, encoded(clear, "png"));

    const auto taken = pictureFromMimeData(data);

    ASSERT_TRUE(taken);
    ASSERT_EQ(taken->fileExtension, QStringLiteral("jpg"));
    EXPECT_GT(qGray(decodePicture(taken->imageData).pixel(4, 4)), 250);
}

TEST(PictureFromMimeData, GivesNothingWithoutADecodablePicture) {
    QMimeData text;
    text.setText(QStringLiteral("words"));
    EXPECT_FALSE(hasPictureType(text));
    EXPECT_FALSE(pictureFromMimeData(text));

    QMimeData broken;
    broken.setData(kPng, QByteArray("\x89PNG broken", 11));
    broken.setData(kTiff, QByteArray());
    EXPECT_TRUE(hasPictureType(broken));
    EXPECT_FALSE(pictureFromMimeData(broken));
}

} // namespace
} // namespace quillery
