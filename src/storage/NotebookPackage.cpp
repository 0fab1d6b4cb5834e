#include "storage/NotebookPackage.h"

#include "document/Document.h"
#include "storage/PackageLayout.h"
#include "storage/PackageReader.h"
#include "storage/PackageWriter.h"
#include "storage/PosixFileSystem.h"

#include <new>

namespace quillery::package {

namespace {

// A package may hold more than memory takes (journals that passed the size check but whose
// notes do not fit): the open fails with an error instead of ending the program.
std::optional<StorageError> readWithinMemory(PackageReader reader, Document& document,
                                             const std::filesystem::path& location,
                                             PackageSummary* summary,
                                             const std::vector<DocumentDiff>* ownRecords) {
    try {
        return reader.read(document, location, summary, ownRecords);
    } catch (const std::bad_alloc&) {
        return StorageError{std::string(storage_errors::kCocoaDomain),
                            storage_errors::kReadTooLarge,
                            "There is not enough memory to open the notebook “" +
                                location.filename().string() + "”."};
    }
}

} // namespace

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
    return readWithinMemory(PackageReader(files, codec), document, location, summary, nullptr);
}

std::optional<StorageError> replay(Document& fresh, const std::filesystem::path& location,
                                   const PictureCodec& codec,
                                   const std::vector<DocumentDiff>& ownRecords) {
    PosixFileSystem files;
    return readWithinMemory(PackageReader(files, codec), fresh, location, nullptr, &ownRecords);
}

std::optional<StorageError> saveInPlace(Document& document, FileSystem& files) {
    return PackageWriter(files).saveInPlace(document);
}

std::optional<StorageError> saveTo(Document& document, const std::filesystem::path& location,
                                   FileSystem& files) {
    return PackageWriter(files).saveTo(document, location);
}

std::optional<std::filesystem::path> movedLocation(const Document& document) {
    PosixFileSystem files;
    return movedLocation(document, files);
}

std::optional<std::filesystem::path> movedLocation(const Document& document, FileSystem& files) {
    const std::optional<FileIdentity>& opened = document.packageIdentity();
    if (!document.fileLocation() || !opened)
        return std::nullopt;
    std::filesystem::path folder = document.fileLocation()->parent_path();
    if (folder.empty())
        folder = ".";
    std::vector<DirectoryEntry> entries;
    if (files.listDirectory(folder, entries))
        return std::nullopt;
    for (const DirectoryEntry& entry : entries) {
        if (entry.type != EntryType::directory)
            continue;
        const std::optional<FileIdentity> identity = files.identity(folder / entry.name);
        if (identity && identity->device == opened->device && identity->inode == opened->inode)
            return folder / entry.name;
    }
    return std::nullopt;
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
