#include "storage/PackageReader.h"

#include "base/Diagnostics.h"
#include "document/Document.h"
#include "document/PictureCodec.h"
#include "model/JournalMerge.h"
#include "storage/FileSystem.h"
#include "storage/JournalFile.h"
#include "storage/JournalLoader.h"
#include "storage/PackageLayout.h"

#include <algorithm>
#include <map>
#include <unordered_map>

namespace quillery {

namespace {

std::string quoted(const std::filesystem::path& path) {
    return "“" + path.filename().string() + "”";
}

bool earlier(const DocumentDiff& a, const DocumentDiff& b) {
    return a.timestamp < b.timestamp;
}

// The journal whose record comes last in the merged order: the latest stamp, and of journals
// sharing it the one read last (names in byte order).
void noteLatest(const JournalLoader::Journal& journal, TimePoint& latest, std::string& name) {
    auto last = std::max_element(journal.diffs.begin(), journal.diffs.end(), earlier);
    if (last != journal.diffs.end() && last->timestamp >= latest) {
        latest = last->timestamp;
        name = journal.fileName;
    }
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
        if (m_files.readFile(imagesLocation / entry.name, contents, kMaximumJournalSize))
            continue;
        PicturePtr picture = m_codec.decode(
            {reinterpret_cast<const std::uint8_t*>(contents.data.get()), contents.size});
        if (!picture)
            continue;
        images.indexStoredPicture(
            Identifier(package_layout::pictureKeyFromFileName(entry.name)), std::move(picture),
            std::filesystem::path(package_layout::kImagesDirectory) / entry.name);
        ++summary.pictureFiles;
    }
}

std::optional<StorageError> PackageReader::read(Document& document,
                                                const std::filesystem::path& location,
                                                package::PackageSummary* summary,
                                                const std::vector<DocumentDiff>* ownRecords) {
    package::PackageSummary found;
    // The package the user named may itself be a link (a notebook kept in a synced folder); only
    // the entries inside it are held to the no-link rule.
    std::filesystem::path package = m_files.resolvedLink(location);
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

    if (auto error = package::checkNotebookFolder(location, m_files))
        return error;
    document.setPackageIdentity(m_files.identity(package));
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

    const std::string ownJournal = journalFileName(document.clientIdentifier());
    // Copies of one client's journal (conflict copies, a home folder copied to a second machine)
    // share their records; each record is applied once.
    // The copies of each client's journal, by the client's place in `copies`.
    std::unordered_map<std::string, std::size_t> clients;
    std::vector<std::vector<std::vector<DocumentDiff>>> copies;
    auto copiesOf = [&](std::string_view client) -> std::vector<std::vector<DocumentDiff>>& {
        auto [place, added] = clients.try_emplace(std::string(client), copies.size());
        if (added)
            copies.emplace_back();
        return copies[place->second];
    };
    std::vector<DocumentDiff> ownDiffs;
    TimePoint latest{};
    std::string latestJournal;
    // Taken before the journals are read: should one change in between, it is read again.
    std::map<std::string, FileIdentity> identities;
    for (const std::string& name : journalNames)
        if (std::optional<FileIdentity> identity = m_files.identity(package / name))
            identities.emplace(name, *identity);
    document.setJournalIdentities(std::move(identities));
    document.setOwnJournalIdentity(m_files.identity(package / ownJournal));
    for (JournalLoader::Journal& journal : JournalLoader(m_files).load(package, journalNames)) {
        // One after another, as if read in turn: the first bad journal ends the read.
        if (journal.rejectedRecord)
            diagnostics::writeLine("Bad diff.");
        if (journal.error)
            return std::move(journal.error);
        if (journal.empty)
            continue;
        found.journals.push_back({journal.fileName, journal.diffs.size()});
        if (journal.fileName == ownJournal)
            ownDiffs = journal.diffs;
        document.setJournalMark(journal.fileName, markOf(journal.diffs, journal.diffs.size()));
        noteLatest(journal, latest, latestJournal);
        copiesOf(package_layout::journalClientKey(journal.fileName))
            .push_back(std::move(journal.diffs));
    }
    if (ownRecords)
        copiesOf(document.clientIdentifier().toString()).push_back(*ownRecords);
    std::vector<std::vector<DocumentDiff>> journals;
    journals.reserve(copies.size());
    for (auto& ofOneClient : copies)
        journals.push_back(UnionOfJournals(std::move(ofOneClient)));

    document.loadData(MergedDiffsFromArrayOfDiffs(std::move(journals)), std::move(ownDiffs));
    document.setLastApplied(latest, latestJournal);
    document.setFileLocation(location);
    document.markSaved();
    if (summary)
        *summary = std::move(found);
    return std::nullopt;
}

} // namespace quillery
