#include "outline/HtmlPictureFolder.h"

#include <fstream>

namespace quillery {

namespace {

// A file name as it may stand in a link of the page: the characters that end or break a link
// written as %XX.
std::string linkPath(const std::string& path) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string link;
    for (const char each : path) {
        const auto c = static_cast<unsigned char>(each);
        if (c <= ' ' || c == '"' || c == '#' || c == '%' || c == '?' || c == 0x7F) {
            link += '%';
            link += kHex[c >> 4];
            link += kHex[c & 0xF];
        } else {
            link += static_cast<char>(c);
        }
    }
    return link;
}

} // namespace

HtmlPictureFolder::HtmlPictureFolder(const std::filesystem::path& page)
    : m_folderName(page.stem().string() + "_files")
    , m_folder(page.parent_path() / m_folderName) {
}

std::optional<std::string> HtmlPictureFolder::operator()(const PictureView& picture) const {
    std::string name(picture.key);
    if (name.empty() || name.find('/') != std::string::npos)
        return std::nullopt;
    if (!picture.fileExtension.empty())
        name += "." + std::string(picture.fileExtension);
    const std::filesystem::path target = m_folder / name;
    std::error_code error;
    std::filesystem::create_directories(m_folder, error);
    if (!picture.file.empty()) {
        std::filesystem::copy_file(picture.file, target,
                                   std::filesystem::copy_options::overwrite_existing, error);
    } else {
        std::ofstream out(target, std::ios::binary);
        out.write(reinterpret_cast<const char*>(picture.bytes.data()),
                  static_cast<std::streamsize>(picture.bytes.size()));
        error = out ? std::error_code() : std::make_error_code(std::errc::io_error);
    }
    if (error)
        return std::nullopt;
    return linkPath(m_folderName + "/" + name);
}

} // namespace quillery
