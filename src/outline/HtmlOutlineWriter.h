#pragma once

#include "outline/OutlineWriter.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quillery {

// One HTML page of nested lists: a note's text with its line breaks, its web address as a link,
// its picture as an image. Nothing is indented, so a deep tree takes space in proportion to its
// notes.
class HtmlOutlineWriter : public OutlineWriter {
public:
    // Where the page shows a picture from (a file copied beside the page, say); without an
    // answer the picture's own file is used, and a picture without a file is named instead.
    using PictureSource = std::function<std::optional<std::string>(const PictureView&)>;

    HtmlOutlineWriter(std::ostream& out, std::string_view title, PictureSource pictureSource = {});

    void note(std::size_t depth, const NoteView& view) override;
    void finish() override;

private:
    void closeItem();

    OutputBuffer m_out;
    PictureSource m_pictureSource;
    // For every open list item, outermost first: whether it holds a list of children yet.
    std::vector<std::uint8_t> m_hasList;
};

} // namespace quillery
