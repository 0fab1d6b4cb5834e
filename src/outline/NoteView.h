#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>

namespace quillery {

// A note's picture as a writer sees it: its key in the notebook (empty for an outline's picture),
// the file holding it when there is one, and its bytes when they are only in memory.
struct PictureView {
    std::string_view key;
    std::filesystem::path file;
    std::string_view fileExtension;
    std::span<const std::uint8_t> bytes;
};

// One note handed to an outline writer, borrowed for the length of the call.
struct NoteView {
    std::string_view identifier; // empty for a note of an outline
    std::string_view text;
    std::optional<std::string_view> url;
    std::optional<PictureView> picture;
};

} // namespace quillery
