#pragma once

#include "TemporaryDirectory.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "document/PictureCodec.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace quillery::testing {

using testing_support::TemporaryDirectory;

class FakePicture : public Picture {
public:
    explicit FakePicture(int width)
        : m_width(width) {}
    int width() const override { return m_width; }
    int height() const override { return 1; }

private:
    int m_width;
};

// Takes bytes that start with "PIC" for a picture as wide as the bytes are long.
class FakePictureCodec : public PictureCodec {
public:
    PicturePtr decode(std::span<const std::uint8_t> bytes) const override;
    PicturePtr placeholder() const override { return m_placeholder; }

private:
    PicturePtr m_placeholder = std::make_shared<FakePicture>(-1);
};

std::vector<std::uint8_t> pictureBytes(std::string_view tail);

// A client of the package: its own preferences (so its own client identifier) and document.
struct Client {
    explicit Client(std::string identifier, Document::Clock clock = {});
    InMemoryPreferences preferences;
    Document::Clock clock;
    FakePictureCodec codec;
    UndoManager undoManager;
    std::unique_ptr<Document> document;

    // A fresh document of this client, as after launching.
    Document& reopen();
    NodePtr addNote(std::string text, const NodePtr& parent = nullptr);
    Identifier addPictureNote(std::string_view bytes, const std::string& extension = "png");
};

// The tree under both roots as one text: each note's identifier, text, picture and address.
std::string treeText(const Document& document);

std::string readText(const std::filesystem::path& path);
void writeText(const std::filesystem::path& path, std::string_view text);
// The names of a directory's entries, sorted.
std::vector<std::string> entryNames(const std::filesystem::path& directory);

inline const std::string kClientA = "AAAAAAAA-0000-4000-8000-000000000001";
inline const std::string kClientB = "BBBBBBBB-0000-4000-8000-000000000002";
inline const std::string kClientC = "CCCCCCCC-0000-4000-8000-000000000003";

} // namespace quillery::testing
