#pragma once

#include "model/DocumentDiff.h"
#include "storage/StorageError.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillery {

class Document;
class FileSystem;
class PictureCodec;

// Reading and writing notebook packages (NAME.quillery directories). The format and the rules
// for packages from elsewhere are in docs/package-format.md.
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

// What a read found, for tools that report on a package.
struct JournalSummary {
    std::string fileName;
    std::size_t recordCount = 0;
};
struct PackageSummary {
    std::vector<JournalSummary> journals; // in the order they were read
    std::size_t pictureFiles = 0;         // pictures that decoded
};

// Whether a folder may be taken for a notebook: only when its name ends in ".quillery" or it holds
// a journal. Anything else fails with "“FOLDER” is not a Quillery notebook" (domain
// NSCocoaErrorDomain, code 259), and nothing may be written into it. A location that does not
// exist or is a plain file passes; reading and saving judge those.
std::optional<StorageError> checkNotebookFolder(const std::filesystem::path& location,
                                                FileSystem& files);

// Where the package the document was read from or last saved to is now, when a save found it
// gone from its location (moved or renamed within the same folder); nothing when it is not found
// there.
std::optional<std::filesystem::path> movedLocation(const Document& document);
std::optional<std::filesystem::path> movedLocation(const Document& document, FileSystem& files);

// The same operations over a given file layer (tests inject failures through it).
std::optional<StorageError> read(Document& document, const std::filesystem::path& location,
                                 const PictureCodec& codec, FileSystem& files,
                                 PackageSummary* summary = nullptr);
std::optional<StorageError> saveInPlace(Document& document, FileSystem& files);
std::optional<StorageError> saveTo(Document& document, const std::filesystem::path& location,
                                   FileSystem& files);

// For a notebook open in another document: reads the package afresh into `fresh`, a new document
// of the same client, with `ownRecords` (the open document's journalRecords(), taken on its
// thread) among this client's records, so that unsaved edits stay. Touches only `fresh`, so it
// may run on a worker thread; hand the result to Document::adoptReplayedTree() on the main thread.
std::optional<StorageError> replay(Document& fresh, const std::filesystem::path& location,
                                   const PictureCodec& codec,
                                   const std::vector<DocumentDiff>& ownRecords);

} // namespace package
} // namespace quillery
