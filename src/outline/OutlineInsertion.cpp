#include "outline/OutlineInsertion.h"

#include "document/Document.h"

#include <fstream>

namespace quillery {

namespace {

// Picture files larger than this are taken as missing rather than read into memory.
constexpr std::uintmax_t kMaxPictureFileBytes = std::uintmax_t{1} << 30;

std::vector<std::uint8_t> readPictureFile(const std::filesystem::path& file) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    if (error || size > kMaxPictureFileBytes)
        return {};
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    std::ifstream in(file, std::ios::binary);
    if (!in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size)))
        return {};
    return bytes;
}

// The picture's key in the document, or nothing when it cannot be read or decoded.
std::optional<Identifier> addPicture(Document& document, const OutlinePicture& picture) {
    std::vector<std::uint8_t> bytes =
        picture.bytes.empty() ? readPictureFile(picture.file) : picture.bytes;
    const PictureCodec* codec = document.images().codec();
    if (bytes.empty() || !codec)
        return std::nullopt;
    PicturePtr decoded = codec->decode(bytes);
    if (!decoded)
        return std::nullopt;
    std::string extension = picture.fileExtension;
    if (extension.empty())
        extension = picture.file.extension().string().substr(picture.file.has_extension() ? 1 : 0);
    return document.addImage(std::move(decoded), std::move(bytes), std::move(extension));
}

} // namespace

std::vector<Identifier> insertOutline(Document& document, const Outline& outline,
                                      const NotebookNode& parent, std::size_t at,
                                      const char* actionName) {
    std::vector<Identifier> added;
    document.userDidEditTogether(actionName, [&] {
        // The new note at each depth that the next deeper note goes under.
        std::vector<NodePtr> parents{document.node(parent.identifier())};
        for (const OutlineNote& note : outline.notes()) {
            parents.resize(note.depth + 1);
            const NotebookNode& under = *parents[note.depth];
            std::optional<Identifier> pictureKey;
            std::string text = note.text;
            if (note.picture) {
                pictureKey = addPicture(document, *note.picture);
                const std::string name = note.picture->file.filename().string();
                if (!pictureKey)
                    text = (name.empty() ? "Missing picture" : "Missing picture: " + name) +
                           (text.empty() ? "" : "\n" + text);
            }
            NodePtr created =
                NotebookNode::create(under.identifier(), std::move(text), pictureKey, note.url);
            const long position = note.depth == 0 ? static_cast<long>(at + added.size()) : -1;
            document.add(*created, under, position);
            if (note.depth == 0)
                added.push_back(created->identifier());
            parents.push_back(document.node(created->identifier()));
        }
    });
    return added;
}

} // namespace quillery
