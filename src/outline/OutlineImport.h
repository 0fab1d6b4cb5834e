#pragma once

#include "outline/Outline.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quillery {

enum class ImportFormat { opml, markdown, text };

// "opml", "markdown" or "text".
std::optional<ImportFormat> importFormatNamed(std::string_view name);
// From the file's extension: .opml and .xml, .md and .markdown, .txt and .text (any case).
std::optional<ImportFormat> importFormatOfFile(const std::filesystem::path& file);

// Why an outline could not be read: the line (1 for the first; 0 when the file itself could not
// be read) and what is wrong there.
struct OutlineError {
    std::size_t line = 0;
    std::string message;
};

// An outline read whole, or the first error; an error leaves the outline empty, so nothing of a
// bad file is ever half-imported.
struct ParsedOutline {
    Outline outline;
    std::optional<OutlineError> error;
};

// Files larger than this are refused before they are read.
inline constexpr std::uintmax_t kMaxOutlineFileBytes = std::uintmax_t{256} << 20;

ParsedOutline parseOutline(std::string_view bytes, ImportFormat format);
ParsedOutline readOutlineFile(const std::filesystem::path& file, ImportFormat format);

namespace outline_import {
// The line of the first byte that is not part of well-formed UTF-8, if any.
std::optional<std::size_t> lineOfInvalidUtf8(std::string_view bytes);
// The line (from 1) that holds the byte at the offset.
std::size_t lineAt(std::string_view bytes, std::size_t offset);
ParsedOutline failure(std::size_t line, std::string message);
} // namespace outline_import

} // namespace quillery
