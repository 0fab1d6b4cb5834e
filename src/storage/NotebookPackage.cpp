#include "storage/NotebookPackage.h"

#include "storage/JournalReader.h"
#include "storage/PackageReader.h"
#include "storage/PackageWriter.h"
#include "storage/PosixFileSystem.h"

namespace quillery::package {

std::optional<StorageError> read(Document& document, const std::filesystem::path& location,
                                 const PictureCodec& codec) {
    PosixFileSystem files;
    return read(document, location, codec, files);
}

std::optional<StorageError> saveInPlace(Document& document) {
    PosixFileSystem files;
    return saveInPlace(document, files);
}

std::optional<StorageError> saveTo(Document& document, const std::filesystem::path& location) {
    PosixFileSystem files;
    return saveTo(document, location, files);
}

std::optional<StorageError> read(Document& document, const std::filesystem::path& location,
                                 const PictureCodec& codec, FileSystem& files,
                                 PackageSummary* summary) {
    return PackageReader(files, codec).read(document, location, summary);
}

std::optional<StorageError> saveInPlace(Document& document, FileSystem& files) {
    return PackageWriter(files).saveInPlace(document);
}

std::optional<StorageError> saveTo(Document& document, const std::filesystem::path& location,
                                   FileSystem& files) {
    return PackageWriter(files).saveTo(document, location);
}

std::optional<StorageError> diffsFromData(std::string_view bytes, std::string_view journalName,
                                          std::vector<DocumentDiff>& diffs) {
    return JournalReader().read(bytes, journalName, diffs);
}

} // namespace quillery::package
