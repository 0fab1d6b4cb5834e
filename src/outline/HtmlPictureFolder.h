#pragma once

#include "outline/NoteView.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quillery {

// Where an exported HTML page shows its pictures from: each picture copied once into the folder
// beside the page (the page's name without its extension, then "_files"), linked relatively.
// Used as the page's HtmlOutlineWriter::PictureSource; a picture that cannot be copied is left
// out of the page.
class HtmlPictureFolder {
public:
    explicit HtmlPictureFolder(const std::filesystem::path& page);

    std::optional<std::string> operator()(const PictureView& picture) const;

private:
    std::string m_folderName;
    std::filesystem::path m_folder;
};

} // namespace quillery
