#pragma once

#include "storage/StorageError.h"

#include <filesystem>
#include <optional>

namespace quillery {

class Document;
class PictureCodec;

// Reading and writing notebook packages (NAME.quillery directories).
namespace package {

// Reads the package into a freshly constructed document: indexes its pictures, parses and merges
// every journal and replays them. On success the document's location is the package.
std::optional<StorageError> read(Document& document, const std::filesystem::path& location,
                                 const PictureCodec& codec);

// Writes this client's journal and the new pictures into the package the document was read from
// or last saved to, in place; other journals and pictures are left untouched.
std::optional<StorageError> saveInPlace(Document& document);

// Writes a complete package at a new location (first save, Save As), carrying over everything of
// the current package; on success the document's location becomes the new one.
std::optional<StorageError> saveTo(Document& document, const std::filesystem::path& location);

} // namespace package
} // namespace quillery
