#pragma once

#include "document/PictureCodec.h"
#include "model/Identifier.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace quillery {

// Picture bytes waiting to be written into a package, with the extension to write them under.
struct ImageData {
    std::vector<std::uint8_t> data;
    std::string fileExtension; // without the dot: "jpg", "png", "tiff"
};

// A notebook's pictures: decoded pictures by key, where their files lie in the package, and the
// bytes of pictures not saved yet. Bytes of a picture note whose addition was undone are held
// aside, so a save in between does not write them and a redo brings them back.
class ImageStore {
public:
    explicit ImageStore(const PictureCodec* codec = nullptr);

    // Keeps the picture and its bytes under a new random key and returns the key.
    Identifier addImage(PicturePtr image, std::vector<std::uint8_t> originalData,
                        std::string fileExtension);
    // What decodes pictures for this store; may be null.
    const PictureCodec* codec() const { return m_codec; }
    // The picture under the key, or the codec's placeholder (null without codec or placeholder).
    PicturePtr image(const Identifier& key) const;
    // Where the picture's file lies in the package, for pictures that were in it when it was read.
    std::optional<std::filesystem::path>
    url(const Identifier& key, const std::optional<std::filesystem::path>& packageLocation) const;

    // Records a picture found in the package; `file` is its path inside the package.
    void indexStoredPicture(const Identifier& key, PicturePtr image, std::filesystem::path file);
    // Indexes the stored pictures of another store (a fresh read of the same package) that this
    // one does not know yet.
    void adoptStoredPictures(const ImageStore& other);

    // Bytes of new pictures leave for the side store when their note is destroyed, and come back
    // when it is created again.
    void holdAside(const Identifier& key);
    void bringBack(const Identifier& key);

    const std::map<Identifier, ImageData>& newImageData() const { return m_newImageData; }
    // After a save to a known location the new pictures are on disk and carried over from there.
    void forgetNewImageData() { m_newImageData.clear(); }
    // Drops one in-memory picture whose file is already in the package (the copy on disk wins).
    void forgetNewImageData(const Identifier& key) { m_newImageData.erase(key); }

private:
    const PictureCodec* m_codec;
    std::unordered_map<Identifier, PicturePtr, IdentifierHash> m_imageCache;
    std::unordered_map<Identifier, std::filesystem::path, IdentifierHash> m_imagePathCache;
    std::map<Identifier, ImageData> m_newImageData;
    std::map<Identifier, ImageData> m_temporarilyDeletedData;
};

} // namespace quillery
