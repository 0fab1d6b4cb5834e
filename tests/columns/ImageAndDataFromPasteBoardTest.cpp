#include "columns/ImageAndDataFromPasteBoard.h"

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

TEST(ImageAndDataFromPasteBoard, PrefersTiffToPng) {
    QMimeData data;
    data.setData(kPng, encoded(picture(Qt::red), "png"));
    data.setData(kTiff, encoded(picture(Qt::blue), "tiff"));
    const auto result = ImageAndDataFromPasteBoard(data);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->image.pixelColor(0, 0), QColor(Qt::blue));
}

TEST(ImageAndDataFromPasteBoard, FallsBackToPngWhenTheTiffDoesNotDecode) {
    QMimeData data;
    data.setData(kTiff, QByteArray("garbage"));
    data.setData(kPng, encoded(picture(Qt::red), "png"));
    const auto result = ImageAndDataFromPasteBoard(data);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->image.pixelColor(0, 0), QColor(Qt::red));
}

TEST(ImageAndDataFromPasteBoard, StoresJpegFirst) {
    QMimeData data;
    data.setData(kPng, encoded(picture(Qt::red), "png"));
    const auto result = ImageAndDataFromPasteBoard(data);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->fileExtension, QStringLiteral("jpg"));
    EXPECT_TRUE(result->imageData.startsWith("\xFF\xD8"));
    QImage decoded;
    EXPECT_TRUE(decoded.loadFromData(result->imageData, "JPEG"));
    EXPECT_EQ(decoded.size(), QSize(4, 4));
}

TEST(ImageAndDataFromPasteBoard, TakesAnyPictureQtOffers) {
    QMimeData image;
    image.setImageData(picture(Qt::green));
    EXPECT_TRUE(HasPictureType(image));
    EXPECT_EQ(ImageAndDataFromPasteBoard(image)->fileExtension, QStringLiteral("jpg"));

    QMimeData bmp;
    bmp.setData(QStringLiteral("image/bmp"), encoded(picture(Qt::green), "bmp"));
    EXPECT_TRUE(HasPictureType(bmp));
    EXPECT_TRUE(ImageAndDataFromPasteBoard(bmp));
}

TEST(ImageAndDataFromPasteBoard, StoresTheFullPictureButKeepsTheShownSizeInMemory) {
    QImage wide(kMaxShownPictureSide + 904, 10, QImage::Format_RGB32);
    wide.fill(Qt::blue);
    QMimeData data;
    data.setImageData(wide);

    const auto taken = ImageAndDataFromPasteBoard(data);

    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->image.width(), kMaxShownPictureSide);
    EXPECT_EQ(DecodePicture(taken->imageData, PictureSize::Full).width(), wide.width());
}

TEST(ImageAndDataFromPasteBoard, TransparentPartsOfAPictureStoredAsJpegAreWhite) {
    QImage clear(8, 8, QImage::Format_ARGB32);
    clear.fill(Qt::transparent);
    QMimeData data;
    data.setData(kPng, encoded(clear, "png"));

    const auto taken = ImageAndDataFromPasteBoard(data);

    ASSERT_TRUE(taken);
    ASSERT_EQ(taken->fileExtension, QStringLiteral("jpg"));
    EXPECT_GT(qGray(DecodePicture(taken->imageData).pixel(4, 4)), 250);
}

TEST(ImageAndDataFromPasteBoard, GivesNothingWithoutADecodablePicture) {
    QMimeData text;
    text.setText(QStringLiteral("words"));
    EXPECT_FALSE(HasPictureType(text));
    EXPECT_FALSE(ImageAndDataFromPasteBoard(text));

    QMimeData broken;
    broken.setData(kPng, QByteArray("\x89PNG broken", 11));
    broken.setData(kTiff, QByteArray());
    EXPECT_TRUE(HasPictureType(broken));
    EXPECT_FALSE(ImageAndDataFromPasteBoard(broken));
}

} // namespace
} // namespace quillery
