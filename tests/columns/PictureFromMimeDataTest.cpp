#include "columns/PictureFromMimeData.h"

#include "EncodedPicture.h"
#include "QtPrinters.h"
#include "columns/DecodePicture.h"

#include <QMimeData>

#include <gtest/gtest.h>
#include <optional>

namespace quillery::testing {
namespace {

QImage filled(QColor colour, QSize size = {8, 8}) {
    QImage image(size, QImage::Format_ARGB32);
    image.fill(colour);
    return image;
}

const QString kTiff = QStringLiteral("image/tiff");
const QString kPng = QStringLiteral("image/png");

// What a drag or the clipboard offers, and the colour of the picture taken from it (none: no
// picture). Every picture taken is stored as JPEG.
struct Offer {
    const char* name;
    void (*fill)(QMimeData& data);
    std::optional<QColor> colour;
};

class PictureFromMimeDataTest : public ::testing::TestWithParam<Offer> {};

TEST_P(PictureFromMimeDataTest, TakesTheFirstPictureThatDecodes) {
    QMimeData data;
    GetParam().fill(data);
    const auto taken = pictureFromMimeData(data);
    ASSERT_EQ(taken.has_value(), GetParam().colour.has_value());
    if (!taken)
        return;
    EXPECT_EQ(taken->fileExtension, QStringLiteral("jpg"));
    const QColor stored = decodePicture(taken->imageData).pixelColor(4, 4);
    for (const auto channel : {&QColor::red, &QColor::green, &QColor::blue}) {
        EXPECT_NEAR((stored.*channel)(), (GetParam().colour.value().*channel)(), 8);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Offers, PictureFromMimeDataTest,
    ::testing::Values(
        Offer{"TiffBeforePng",
              [](QMimeData& d) {
                  d.setData(kPng, encoded(filled(Qt::red), "png"));
                  d.setData(kTiff, encoded(filled(Qt::blue), "tiff"));
              },
              QColor(Qt::blue)},
        Offer{"PngWhenTheTiffDoesNotDecode",
              [](QMimeData& d) {
                  d.setData(kTiff, QByteArray("garbage"));
                  d.setData(kPng, encoded(filled(Qt::red), "png"));
              },
              QColor(Qt::red)},
        Offer{"QtsOwnImage", [](QMimeData& d) { d.setImageData(filled(Qt::green)); },
              QColor(Qt::green)},
        Offer{"AnyTypeQtReads",
              [](QMimeData& d) {
                  d.setData(QStringLiteral("image/bmp"), encoded(filled(Qt::green), "bmp"));
              },
              QColor(Qt::green)},
        Offer{"TransparencyLaidOnWhite",
              [](QMimeData& d) { d.setData(kPng, encoded(filled(Qt::transparent), "png")); },
              QColor(Qt::white)},
        Offer{"TextAlone", [](QMimeData& d) { d.setText(QStringLiteral("words")); }, std::nullopt},
        Offer{"BrokenPictures",
              [](QMimeData& d) {
                  d.setData(kPng, QByteArray("\x89PNG broken", 11));
                  d.setData(kTiff, QByteArray());
              },
              std::nullopt}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(PictureFromMimeData, StoresTheFullPictureButKeepsTheShownSizeInMemory) {
    const QImage wide = filled(Qt::blue, {kMaxShownPictureSide + 904, 10});
    QMimeData data;
    data.setImageData(wide);
    const auto taken = pictureFromMimeData(data);
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->image.width(), kMaxShownPictureSide);
    EXPECT_EQ(decodePicture(taken->imageData, PictureSize::Full).width(), wide.width());
}

} // namespace
} // namespace quillery::testing
