#include "storage/HeaderPictureCodec.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillery {
namespace {

struct Header {
    const char* name;
    std::string bytes;
    const char* format; // nullptr: not a picture
    int width;
    int height;
};

void PrintTo(const Header& header, std::ostream* out) {
    *out << header.name;
}

std::string bytes(std::initializer_list<int> values) {
    std::string out;
    for (int value : values)
        out += static_cast<char>(value);
    return out;
}

class HeaderPictureCodecTest : public ::testing::TestWithParam<Header> {};

TEST_P(HeaderPictureCodecTest, RecognisesFormatAndSize) {
    const Header& header = GetParam();
    auto picture = HeaderPictureCodec().decode(
        {reinterpret_cast<const std::uint8_t*>(header.bytes.data()), header.bytes.size()});
    if (!header.format) {
        EXPECT_FALSE(picture);
        return;
    }
    ASSERT_TRUE(picture);
    EXPECT_EQ(static_cast<const HeaderPicture&>(*picture).format(), header.format);
    EXPECT_EQ(picture->width(), header.width);
    EXPECT_EQ(picture->height(), header.height);
}

INSTANTIATE_TEST_SUITE_P(
    Headers, HeaderPictureCodecTest,
    ::testing::Values(
        Header{"Png",
               "\x89PNG\r\n\x1A\n" + bytes({0, 0, 0, 13}) + "IHDR" +
                   bytes({0, 0, 1, 0x2C, 0, 0, 0, 200}),
               "png", 300, 200},
        Header{"PngTruncated", "\x89PNG\r\n\x1A\n", "png", 0, 0},
        Header{"Jpeg",
               bytes({0xFF, 0xD8, 0xFF, 0xE0, 0, 4, 0, 0, 0xFF, 0xC0, 0, 11, 8, 0, 50, 0, 80}),
               "jpeg", 80, 50},
        Header{"JpegBadSegment", bytes({0xFF, 0xD8, 0xFF, 0xE0, 0, 1}), "jpeg", 0, 0},
        Header{"Gif", "GIF89a" + bytes({10, 0, 20, 0}), "gif", 10, 20},
        Header{"Bmp", "BM" + std::string(16, '\0') + bytes({4, 0, 0, 0, 0xFD, 0xFF, 0xFF, 0xFF}),
               "bmp", 4, 3},
        Header{"TiffLittleEndian", "II*" + bytes({0, 8, 0, 0, 0, 2, 0, 0, 1, 3, 0, 1,  0, 0, 0, 64,
                                                  0, 0, 0, 1, 1, 4, 0, 1, 0, 0, 0, 32, 0, 0, 0}),
               "tiff", 64, 32},
        Header{"TiffDirectoryOutside", "MM" + bytes({0, 42, 0x7F, 0, 0, 0}), "tiff", 0, 0},
        Header{"WebpLossless",
               "RIFF" + bytes({0, 0, 0, 0}) + "WEBPVP8L" + bytes({0, 0, 0, 0, 0x2F, 9, 0x40, 2, 0}),
               "webp", 10, 10},
        Header{"Text", "hello", nullptr, 0, 0}, Header{"Empty", "", nullptr, 0, 0}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace quillery
