#include "document/ImageStore.h"

namespace quillery {

ImageStore::ImageStore(const PictureCodec* codec)
    : m_codec(codec) {
}

Identifier ImageStore::addImage(PicturePtr image, std::vector<std::uint8_t> originalData,
                                std::string fileExtension) {
    Identifier key = Identifier::makeRandom();
    m_imageCache[key] = std::move(image);
    m_newImageData[key] = ImageData{std::move(originalData), std::move(fileExtension)};
    return key;
}

PicturePtr ImageStore::image(const Identifier& key) const {
    if (auto found = m_imageCache.find(key); found != m_imageCache.end())
        return found->second;
    return m_codec ? m_codec->placeholder() : nullptr;
}

std::optional<std::filesystem::path>
ImageStore::url(const Identifier& key,
                const std::optional<std::filesystem::path>& packageLocation) const {
    if (!packageLocation)
        return std::nullopt;
    auto found = m_imagePathCache.find(key);
    if (found == m_imagePathCache.end())
        return std::nullopt;
    return *packageLocation / found->second;
}

void ImageStore::indexStoredPicture(const Identifier& key, PicturePtr image,
                                    std::filesystem::path file) {
    m_imageCache[key] = std::move(image);
    m_imagePathCache[key] = std::move(file);
}

void ImageStore::holdAside(const Identifier& key) {
    if (auto entry = m_newImageData.extract(key))
        m_temporarilyDeletedData.insert_or_assign(entry.key(), std::move(entry.mapped()));
}

void ImageStore::bringBack(const Identifier& key) {
    if (auto entry = m_temporarilyDeletedData.extract(key))
        m_newImageData.insert_or_assign(entry.key(), std::move(entry.mapped()));
}

void ImageStore::adoptStoredPictures(const ImageStore& other) {
    for (const auto& [key, file] : other.m_imagePathCache)
        if (!m_imagePathCache.contains(key)) {
            m_imagePathCache.emplace(key, file);
            if (auto found = other.m_imageCache.find(key); found != other.m_imageCache.end())
                m_imageCache.insert_or_assign(key, found->second);
        }
}

} // namespace quillery
