#include "storage/PackageReader.h"

#include "document/Document.h"
#include "model/JournalMerge.h"
#include "storage/FileSystem.h"
#include "storage/PackageLayout.h"
#include "storage/PictureCodec.h"

#include <algorithm>

namespace quillery {

namespace {

std::string quoted(const std::filesystem::path& path) {
    return "“" + path.filename().string() + "”";
}

// The package the user named may itself be a link (a notebook kept in a synced folder); only the
// entries inside it are held to the no-link rule.
std::filesystem::path resolvedPackage(const std::filesystem::path& location) {
    std::error_code error;
    if (std::filesystem::is_symlink(std::filesystem::symlink_status(location, error))) {
        auto target = std::filesystem::canonical(location, error);
        if (!error)
            return target;
    }
    return location;
}

} // namespace

PackageReader::PackageReader(FileSystem& files, const PictureCodec& codec)
    : m_files(files)
    , m_codec(codec) {
}

void PackageReader::indexPictures(Document& document, const std::filesystem::path& imagesLocation,
                                  package::PackageSummary& summary) {
    std::vector<DirectoryEntry> entries;
    if (m_files.listDirectory(imagesLocation, entries))
        return;
    ImageStore& images = document.images();
    for (const DirectoryEntry& entry : entries) {
        if (entry.type != EntryType::regularFile || package_layout::isTemporaryName(entry.name))
            continue;
        FileContents contents;
        if (m_files.readFile(imagesLocation / entry.name, contents))
            continue;
        PicturePtr picture = m_codec.decode(
            {reinterpret_cast<const std::uint8_t*>(contents.data.get()), contents.size});
        if (!picture)
            continue;
        images.indexStoredPicture(Identifier(package_layout::pictureKeyFromFileName(entry.name)),
                                  std::move(picture), entry.name);
        ++summary.pictureFiles;
    }
}

std::optional<StorageError> PackageReader::read(Document& document,
                                                const std::filesystem::path& location,
                                                package::PackageSummary* summary) {
    package::PackageSummary found;
    std::filesystem::path package = resolvedPackage(location);
    EntryType type = m_files.entryType(package);
    if (type == EntryType::missing)
        return StorageError{std::string(storage_errors::kCocoaDomain),
                            storage_errors::kReadNoSuchFile,
                            "The notebook " + quoted(location) + " doesn't exist."};
    if (type != EntryType::directory) {
        // Not a package: an empty notebook, as if nothing had been saved yet.
        document.setFileLocation(location);
        if (summary)
            *summary = std::move(found);
        return std::nullopt;
    }

    std::vector<DirectoryEntry> entries;
    if (auto error = m_files.listDirectory(package, entries))
        return storage_errors::fromFileError(error, false,
                                             "Couldn't open the notebook " + quoted(location));

    auto images = std::find_if(entries.begin(), entries.end(), [](const DirectoryEntry& entry) {
        return entry.name == package_layout::kImagesDirectory;
    });
    if (images != entries.end() && images->type == EntryType::directory)
        indexPictures(document, package / images->name, found);

    std::vector<std::string> journalNames;
    for (const DirectoryEntry& entry : entries)
        if (entry.type == EntryType::regularFile && package_layout::isJournalName(entry.name))
            journalNames.push_back(entry.name);
    // Byte order of names, so every reader merges the journals in the same order.
    std::sort(journalNames.begin(), journalNames.end());

    const std::string ownJournal = package_layout::journalFileName(document.clientIdentifier());
    std::vector<std::vector<DocumentDiff>> journals;
    std::vector<DocumentDiff> ownDiffs;
    for (const std::string& name : journalNames) {
        FileContents contents;
        if (auto error = m_files.readFile(package / name, contents))
            return storage_errors::fromFileError(error, false,
                                                 "Couldn't read the journal “" + name + "”");
        if (contents.size == 0)
            continue;
        std::vector<DocumentDiff> diffs;
        if (auto error = m_journalReader.read(contents, name, diffs))
            return error;
        found.journals.push_back({name, diffs.size()});
        if (name == ownJournal)
            ownDiffs = diffs;
        journals.push_back(std::move(diffs));
    }

    document.loadData(MergedDiffsFromArrayOfDiffs(std::move(journals)), std::move(ownDiffs));
    document.setFileLocation(location);
    document.markSaved();
    if (summary)
        *summary = std::move(found);
    return std::nullopt;
}

} // namespace quillery
