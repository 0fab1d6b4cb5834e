#include "storage/NotebookPackage.h"

#include "storage/PackageLayout.h"
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

std::optional<StorageError> replay(Document& fresh, const std::filesystem::path& location,
                                   const PictureCodec& codec,
                                   const std::vector<DocumentDiff>& ownRecords) {
    PosixFileSystem files;
    return PackageReader(files, codec).read(fresh, location, nullptr, &ownRecords);
}

std::optional<StorageError> saveInPlace(Document& document, FileSystem& files) {
    return PackageWriter(files).saveInPlace(document);
}

std::optional<StorageError> saveTo(Document& document, const std::filesystem::path& location,
                                   FileSystem& files) {
    return PackageWriter(files).saveTo(document, location);
}

std::optional<StorageError> checkNotebookFolder(const std::filesystem::path& location,
                                                FileSystem& files) {
    const std::filesystem::path folder = files.resolvedLink(location);
    if (files.entryType(folder) != EntryType::directory ||
        location.filename().string().ends_with(package_layout::kPackageExtension) ||
        folder.filename().string().ends_with(package_layout::kPackageExtension))
        return std::nullopt;
    std::vector<DirectoryEntry> entries;
    if (!files.listDirectory(folder, entries))
        for (const DirectoryEntry& entry : entries)
            if (entry.type == EntryType::regularFile && package_layout::isJournalName(entry.name))
                return std::nullopt;
    return StorageError{std::string(storage_errors::kCocoaDomain), storage_errors::kReadCorruptFile,
                        "“" + location.string() + "” is not a Quillery notebook"};
}

} // namespace quillery::package
