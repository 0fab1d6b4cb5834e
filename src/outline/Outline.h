#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quillery {

// A picture carried by an outline: its bytes, or the file that holds them (a picture in a
// package), with the extension to store it under.
struct OutlinePicture {
    std::vector<std::uint8_t> bytes;
    std::filesystem::path file; // read when `bytes` is empty
    std::string fileExtension;  // without the dot: "png", "jpg"
};

// One note of an outline. `depth` 0 is the top level; a note's children are the notes after it
// with depth one more, up to the next note at its depth or less.
struct OutlineNote {
    std::size_t depth = 0;
    std::string text;
    std::optional<std::string> url;
    std::optional<OutlinePicture> picture;
};

// Notes in and out of a notebook without identifiers: what an import reads, what a copy puts on
// the clipboard. The notes are kept in tree order with their depths rather than as nested
// values, so that a very deep outline is built, walked and freed without recursion.
class Outline {
public:
    const std::vector<OutlineNote>& notes() const { return m_notes; }
    bool empty() const { return m_notes.empty(); }
    std::size_t size() const { return m_notes.size(); }

    // Appends a note at a depth of at most one more than the note before (0 for the first);
    // a deeper one is placed one level below the note before. Gives the depth it got.
    std::size_t add(std::size_t depth, std::string text, std::optional<std::string> url = {},
                    std::optional<OutlinePicture> picture = {});
    OutlineNote& back() { return m_notes.back(); }

private:
    std::vector<OutlineNote> m_notes;
};

} // namespace quillery
