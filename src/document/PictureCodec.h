#pragma once

#include <cstdint>
#include <memory>
#include <span>

namespace quillery {

// A decoded picture. The core needs only its size; the app's pictures carry their pixels too.
class Picture {
public:
    virtual ~Picture() = default;
    virtual int width() const = 0;
    virtual int height() const = 0;
};

using PicturePtr = std::shared_ptr<const Picture>;

// Decodes picture bytes; implemented by the app over its toolkit and by tests with a fake.
class PictureCodec {
public:
    virtual ~PictureCodec() = default;
    // Nothing when the bytes are not a picture this codec can read.
    virtual PicturePtr decode(std::span<const std::uint8_t> bytes) const = 0;
    // The picture shown for a key the notebook does not know; may be null when there is none.
    virtual PicturePtr placeholder() const = 0;
};

} // namespace quillery
