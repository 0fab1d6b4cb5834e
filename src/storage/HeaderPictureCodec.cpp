#include "storage/HeaderPictureCodec.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>

using namespace std::string_view_literals;

namespace quillery {

namespace {

using Bytes = std::span<const std::uint8_t>;

struct Size {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

bool startsWith(Bytes bytes, std::string_view magic) {
    return bytes.size() >= magic.size() &&
           std::memcmp(bytes.data(), magic.data(), magic.size()) == 0;
}

std::optional<std::uint32_t> bigEndian(Bytes bytes, std::size_t at, std::size_t length) {
    if (at + length > bytes.size())
        return std::nullopt;
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < length; ++i)
        value = (value << 8) | bytes[at + i];
    return value;
}

std::optional<std::uint32_t> littleEndian(Bytes bytes, std::size_t at, std::size_t length) {
    if (at + length > bytes.size())
        return std::nullopt;
    std::uint32_t value = 0;
    for (std::size_t i = length; i-- > 0;)
        value = (value << 8) | bytes[at + i];
    return value;
}

Size pngSize(Bytes bytes) {
    // The IHDR chunk comes first: width and height right after its type.
    if (bytes.size() < 24 || std::memcmp(bytes.data() + 12, "IHDR", 4) != 0)
        return {};
    return {bigEndian(bytes, 16, 4).value_or(0), bigEndian(bytes, 20, 4).value_or(0)};
}

Size jpegSize(Bytes bytes) {
    // Walk the marker segments up to the first start-of-frame.
    std::size_t at = 2;
    while (at + 4 <= bytes.size()) {
        if (bytes[at] != 0xFF)
            return {};
        std::uint8_t marker = bytes[at + 1];
        if (marker == 0xFF) {
            ++at;
            continue;
        }
        auto length = bigEndian(bytes, at + 2, 2);
        if (!length || *length < 2)
            return {};
        bool startOfFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (startOfFrame)
            return {bigEndian(bytes, at + 7, 2).value_or(0),
                    bigEndian(bytes, at + 5, 2).value_or(0)};
        at += 2 + *length;
    }
    return {};
}

Size tiffSize(Bytes bytes) {
    bool little = bytes[0] == 'I';
    auto read = [&](std::size_t at, std::size_t length) {
        return little ? littleEndian(bytes, at, length) : bigEndian(bytes, at, length);
    };
    auto directory = read(4, 4);
    if (!directory)
        return {};
    auto count = read(*directory, 2);
    if (!count)
        return {};
    Size size;
    for (std::uint32_t i = 0; i < *count; ++i) {
        std::size_t entry = *directory + 2 + 12 * std::size_t{i};
        auto tag = read(entry, 2);
        auto type = read(entry + 2, 2);
        if (!tag || !type)
            break;
        // Short (3) values sit in the first two bytes of the value field, long (4) in all four.
        auto value = *type == 3 ? read(entry + 8, 2) : read(entry + 8, 4);
        if (*tag == 256)
            size.width = value.value_or(0);
        else if (*tag == 257)
            size.height = value.value_or(0);
    }
    return size;
}

Size webpSize(Bytes bytes) {
    auto chunk = [&](std::string_view name) {
        return bytes.size() >= 16 && std::memcmp(bytes.data() + 12, name.data(), 4) == 0;
    };
    if (chunk("VP8X") && bytes.size() >= 30)
        return {*littleEndian(bytes, 24, 3) + 1, *littleEndian(bytes, 27, 3) + 1};
    if (chunk("VP8L") && bytes.size() >= 25) {
        std::uint32_t bits = *littleEndian(bytes, 21, 4);
        return {(bits & 0x3FFF) + 1, ((bits >> 14) & 0x3FFF) + 1};
    }
    if (chunk("VP8 ") && bytes.size() >= 30)
        return {*littleEndian(bytes, 26, 2) & 0x3FFF, *littleEndian(bytes, 28, 2) & 0x3FFF};
    return {};
}

int clamped(std::uint32_t value) {
    return static_cast<int>(std::min<std::uint32_t>(value, std::numeric_limits<int>::max()));
}

} // namespace

HeaderPicture::HeaderPicture(std::string format, int width, int height)
    : m_format(std::move(format))
    , m_width(width)
    , m_height(height) {
}

PicturePtr HeaderPictureCodec::decode(std::span<const std::uint8_t> bytes) const {
    std::string format;
    Size size;
    if (startsWith(bytes, "\x89PNG\r\n\x1A\n")) {
        format = "png";
        size = pngSize(bytes);
    } else if (startsWith(bytes, "\xFF\xD8\xFF")) {
        format = "jpeg";
        size = jpegSize(bytes);
    } else if (startsWith(bytes, "II*\0"sv) || startsWith(bytes, "MM\0*"sv)) {
        format = "tiff";
        size = tiffSize(bytes);
    } else if (startsWith(bytes, "GIF87a") || startsWith(bytes, "GIF89a")) {
        format = "gif";
        size = {littleEndian(bytes, 6, 2).value_or(0), littleEndian(bytes, 8, 2).value_or(0)};
    } else if (startsWith(bytes, "BM") && bytes.size() >= 26) {
        format = "bmp";
        auto height = static_cast<std::int32_t>(littleEndian(bytes, 22, 4).value_or(0));
        size = {
            littleEndian(bytes, 18, 4).value_or(0),
            static_cast<std::uint32_t>(height < 0 ? -static_cast<std::int64_t>(height) : height)};
    } else if (startsWith(bytes, "RIFF") && bytes.size() >= 12 &&
               std::memcmp(bytes.data() + 8, "WEBP", 4) == 0) {
        format = "webp";
        size = webpSize(bytes);
    } else {
        return nullptr;
    }
    return std::make_shared<HeaderPicture>(std::move(format), clamped(size.width),
                                           clamped(size.height));
}

} // namespace quillery
