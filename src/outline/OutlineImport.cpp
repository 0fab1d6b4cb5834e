#include "outline/OutlineImport.h"

#include "outline/IndentedTextReader.h"
#include "outline/MarkdownOutlineReader.h"
#include "outline/OpmlReader.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <simdjson.h>

namespace quillery {

namespace outline_import {

std::size_t lineAt(std::string_view bytes, std::size_t offset) {
    offset = std::min(offset, bytes.size());
    // The end of a file that ends its last line is still on that line.
    if (offset == bytes.size() && bytes.ends_with('\n'))
        --offset;
    return 1 + static_cast<std::size_t>(std::count(bytes.begin(), bytes.begin() + offset, '\n'));
}

std::optional<std::size_t> lineOfInvalidUtf8(std::string_view bytes) {
    if (simdjson::validate_utf8(bytes.data(), bytes.size()))
        return std::nullopt;
    std::size_t line = 1;
    for (std::size_t start = 0; start <= bytes.size(); ++line) {
        std::size_t end = bytes.find('\n', start);
        end = end == std::string_view::npos ? bytes.size() : end;
        if (!simdjson::validate_utf8(bytes.data() + start, end - start))
            return line;
        start = end + 1;
    }
    return std::nullopt;
}

ParsedOutline failure(std::size_t line, std::string message) {
    return {Outline(), OutlineError{line, std::move(message)}};
}

} // namespace outline_import

std::optional<ImportFormat> importFormatNamed(std::string_view name) {
    if (name == "opml")
        return ImportFormat::opml;
    if (name == "markdown")
        return ImportFormat::markdown;
    if (name == "text")
        return ImportFormat::text;
    return std::nullopt;
}

std::optional<ImportFormat> importFormatOfFile(const std::filesystem::path& file) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".opml" || extension == ".xml")
        return ImportFormat::opml;
    if (extension == ".md" || extension == ".markdown")
        return ImportFormat::markdown;
    if (extension == ".txt" || extension == ".text")
        return ImportFormat::text;
    return std::nullopt;
}

ParsedOutline parseOutline(std::string_view bytes, ImportFormat format) {
    switch (format) {
    case ImportFormat::opml:
        return readOpml(bytes);
    case ImportFormat::markdown:
        return readMarkdownOutline(bytes);
    case ImportFormat::text:
        return readIndentedText(bytes);
    }
    return outline_import::failure(0, "unknown format");
}

ParsedOutline readOutlineFile(const std::filesystem::path& file, ImportFormat format) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    if (error)
        return outline_import::failure(0, error.message());
    if (size > kMaxOutlineFileBytes)
        return outline_import::failure(0, "the file is larger than 256 MB");
    std::ifstream in(file, std::ios::binary);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    if (!in.read(bytes.data(), static_cast<std::streamsize>(size)))
        return outline_import::failure(0, "the file could not be read");
    return parseOutline(bytes, format);
}

} // namespace quillery
