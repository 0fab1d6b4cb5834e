#include "storage/PackageWriter.h"

#include "base/Diagnostics.h"
#include "document/Document.h"
#include "storage/FileSystem.h"
#include "storage/JournalFile.h"
#include "storage/JournalReader.h"
#include "storage/PackageLayout.h"

#include <cstdlib>

namespace quillery {

namespace {

std::string quoted(const std::filesystem::path& path) {
    return "“" + path.filename().string() + "”";
}

StorageError writeError(const std::error_code& error, std::string_view what) {
    return storage_errors::fromFileError(error, true, what);
}

// Writers of one journal on this machine take turns through a lock file outside the package (a
// synced folder must not carry it), named after the package folder and the client.
std::filesystem::path lockDirectory() {
    auto fromEnvironment = [](const char* name) -> std::optional<std::filesystem::path> {
        const char* value = std::getenv(name);
        if (value && *value == '/')
            return std::filesystem::path(value);
        return std::nullopt;
    };
    if (auto runtime = fromEnvironment("XDG_RUNTIME_DIR"))
        return *runtime / "quillery" / "locks";
    if (auto cache = fromEnvironment("XDG_CACHE_HOME"))
        return *cache / "quillery" / "locks";
    if (auto home = fromEnvironment("HOME"))
        return *home / ".cache" / "quillery" / "locks";
    return std::filesystem::temp_directory_path() / "quillery-locks";
}

bool sameLocation(FileSystem& files, const std::filesystem::path& a,
                  const std::filesystem::path& b) {
    const std::optional<FileIdentity> first = files.identity(files.resolvedLink(a));
    const std::optional<FileIdentity> second = files.identity(files.resolvedLink(b));
    return first && second && first->device == second->device && first->inode == second->inode;
}

// Stamps show the years 0001 to 9999: a clock beyond them, or a change made while it was, is
// refused before anything is written, rather than written as a wrong year.
std::optional<StorageError> checkStamps(const Document& document) {
    auto outside = [](TimePoint time) -> std::optional<StorageError> {
        if (IsStampable(time))
            return std::nullopt;
        const std::string when =
            time < TimePoint{} ? "before the year 0001" : "after the year 9999";
        return StorageError{std::string(storage_errors::kCocoaDomain),
                            storage_errors::kWriteUnknown,
                            "Couldn't save: the clock reads a time " + when +
                                ", which a notebook cannot record. Nothing was saved; set the "
                                "clock right, then save again."};
    };
    if (auto error = outside(document.now()))
        return error;
    for (const DocumentDiff& diff : document.diffs())
        if (auto error = outside(diff.timestamp))
            return error;
    return std::nullopt;
}

} // namespace

PackageWriter::PackageWriter(FileSystem& files)
    : m_files(files) {
}

std::set<std::string>
PackageWriter::listStoredPictures(const std::optional<std::filesystem::path>& package) {
    std::set<std::string> stored;
    if (!package)
        return stored;
    std::filesystem::path images = *package / package_layout::kImagesDirectory;
    diagnostics::writeLine("imagesURL = " + images.string());
    std::vector<DirectoryEntry> entries;
    if (m_files.listDirectory(m_files.resolvedLink(*package) / package_layout::kImagesDirectory,
                              entries))
        return stored;
    for (const DirectoryEntry& entry : entries) {
        diagnostics::writeLine((images / entry.name).string());
        if (entry.type == EntryType::regularFile && !package_layout::isTemporaryName(entry.name))
            stored.insert(entry.name);
    }
    return stored;
}

void PackageWriter::clearOwnTemporaryFiles(const Identifier& client,
                                           const std::filesystem::path& directory) {
    // Left by a save that was stopped part-way. Other clients' temporary files are theirs: they
    // may be writing them right now.
    std::vector<DirectoryEntry> entries;
    if (m_files.listDirectory(directory, entries))
        return;
    for (const DirectoryEntry& entry : entries)
        if (entry.type != EntryType::directory &&
            package_layout::isOwnTemporaryName(entry.name, client))
            m_files.removeFile(directory / entry.name);
}

std::error_code PackageWriter::clearTemporaryPath(const std::filesystem::path& path) {
    m_files.removeFile(path);
    if (m_files.entryType(path) == EntryType::missing)
        return {};
    return m_files.rename(path,
                          path.parent_path() / package_layout::asideName(path.filename().string(),
                                                                         Identifier::makeRandom()));
}

std::optional<StorageError> PackageWriter::checkSamePackage(const Document& document,
                                                            const std::filesystem::path& package) {
    const std::filesystem::path& location = *document.fileLocation();
    const std::optional<FileIdentity> opened = document.packageIdentity();
    const std::optional<FileIdentity> now = m_files.identity(package);
    const bool gone = !now;
    if (!gone && (!opened || (opened->device == now->device && opened->inode == now->inode)))
        return std::nullopt;
    const std::string what = gone ? " is no longer at " + location.string() +
                                        ": it was moved, renamed or deleted while open"
                                  : " at " + location.string() +
                                        " is another folder than the one opened: it was "
                                        "replaced while open";
    return StorageError{std::string(storage_errors::kCocoaDomain), storage_errors::kNoSuchPackage,
                        "The notebook " + quoted(location) + what +
                            ". Nothing was saved there; save it elsewhere to keep the changes."};
}

std::optional<StorageError>
PackageWriter::writeNewPictures(Document& document, const std::filesystem::path& imagesLocation,
                                const std::set<std::string>& onDisk, bool throughTemporaryFiles) {
    bool wrote = false;
    for (const auto& [key, picture] : document.images().newImageData()) {
        std::string name = package_layout::pictureFileName(key, picture.fileExtension);
        if (!package_layout::isPlainFileName(name) || package_layout::isTemporaryName(name))
            return StorageError{std::string(storage_errors::kCocoaDomain),
                                storage_errors::kWriteUnknown,
                                "The picture “" + name + "” can't be saved under that name."};
        // A file already in the package wins over the copy in memory.
        if (onDisk.contains(name))
            continue;
        std::filesystem::path target = imagesLocation / name;
        std::filesystem::path path = throughTemporaryFiles
                                         ? imagesLocation / package_layout::temporaryPictureName(
                                                                document.clientIdentifier(), name)
                                         : target;
        std::string what = "Couldn't write the picture “" + name + "”";
        std::unique_ptr<WritableFile> file;
        std::error_code error =
            throughTemporaryFiles ? clearTemporaryPath(path) : std::error_code{};
        if (!error)
            error = m_files.createFile(path, FileAccess::everyone, file);
        if (!error)
            error = file->append(
                {reinterpret_cast<const char*>(picture.data.data()), picture.data.size()});
        if (!error)
            error = file->sync();
        if (!error)
            error = file->close();
        if (!error && throughTemporaryFiles)
            error = m_files.rename(path, target);
        if (error) {
            file.reset();
            m_files.removeFile(path);
            return writeError(error, what);
        }
        wrote = true;
    }
    if (wrote)
        if (auto error = m_files.syncDirectory(imagesLocation))
            return writeError(error, "Couldn't save the pictures");
    return std::nullopt;
}

std::unique_ptr<FileLock> PackageWriter::lockJournal(const Identifier& client,
                                                     const std::filesystem::path& package) {
    std::unique_ptr<FileLock> lock;
    std::optional<FileIdentity> folder = m_files.identity(package);
    if (!folder)
        return lock;
    std::string name = std::to_string(folder->device) + "-" + std::to_string(folder->inode) + "-" +
                       client.toString() + ".lock";
    // Without a place for the lock the save goes on unguarded, as saves did before locks.
    if (m_files.lockExclusively(lockDirectory() / name, lock))
        lock.reset();
    return lock;
}

std::optional<StorageError>
PackageWriter::mergeOwnJournal(Document& document, const std::filesystem::path& package,
                               const std::vector<DirectoryEntry>& entries,
                               std::vector<std::string>& foldedCopies) {
    const Identifier& client = document.clientIdentifier();
    const std::string own = journalFileName(client);
    std::vector<std::string> names;
    std::optional<FileIdentity> onDisk = m_files.identity(package / own);
    if (onDisk && onDisk != document.ownJournalIdentity())
        names.push_back(own);
    for (const DirectoryEntry& entry : entries)
        if (entry.type == EntryType::regularFile &&
            package_layout::isConflictCopyOf(entry.name, client))
            names.push_back(entry.name);
    std::vector<std::vector<DocumentDiff>> copies;
    JournalReader reader;
    const JournalSizeLimit limit(m_files);
    for (const std::string& name : names) {
        FileContents contents;
        bool vanished = false;
        if (auto error = readJournalFile(m_files, limit, package, name, contents, vanished))
            return error;
        if (vanished)
            continue;
        std::vector<DocumentDiff> diffs;
        if (contents.size > 0) {
            // A damaged own journal stops the save, so that its records are not written over;
            // a damaged conflict copy is left where it is.
            if (auto parseError = reader.read(contents, name, diffs)) {
                if (name == own)
                    return parseError;
                continue;
            }
        }
        if (name != own)
            foldedCopies.push_back(name);
        copies.push_back(std::move(diffs));
    }
    if (!copies.empty())
        document.adoptOwnJournalRecords(std::move(copies));
    return std::nullopt;
}

std::optional<StorageError> PackageWriter::writeJournal(Document& document,
                                                        const std::filesystem::path& path) {
    std::string what =
        "Couldn't write the journal “" + journalFileName(document.clientIdentifier()) + "”";
    if (auto error = clearTemporaryPath(path))
        return writeError(error, what);
    std::unique_ptr<WritableFile> file;
    if (auto error = m_files.createFile(path, FileAccess::everyone, file))
        return writeError(error, what);
    // The log alone, unless records of other writers were adopted: a large log is not copied.
    std::vector<DocumentDiff> merged;
    if (!document.adoptedDiffs().empty())
        merged = document.journalRecords();
    const std::vector<DocumentDiff>& records =
        document.adoptedDiffs().empty() ? document.diffs() : merged;
    auto result =
        m_journalWriter.write(*file, document.clientIdentifier(), document.now(), records);
    std::error_code error = result.fileError;
    if (!error && !result.invalidText)
        error = file->sync();
    if (!error && !result.invalidText)
        error = file->close();
    if (!error && !result.invalidText) {
        document.setJournalMark(journalFileName(document.clientIdentifier()),
                                markOf(records, records.size()));
        return std::nullopt;
    }
    file.reset();
    m_files.removeFile(path);
    if (error)
        return writeError(error, what);
    return StorageError{std::string(storage_errors::kCocoaDomain), storage_errors::kUnwritableJson,
                        what + ": a note's text is not valid UTF-8."};
}

std::optional<StorageError> PackageWriter::saveInPlace(Document& document) {
    if (!document.fileLocation())
        return StorageError{std::string(storage_errors::kCocoaDomain),
                            storage_errors::kWriteUnknown,
                            "The notebook has not been saved yet; choose where to save it."};
    if (auto error = checkStamps(document))
        return error;
    const std::filesystem::path location = *document.fileLocation();
    const std::filesystem::path package = m_files.resolvedLink(location);
    if (auto error = checkSamePackage(document, package))
        return error;
    if (m_files.entryType(package) != EntryType::directory)
        return StorageError{std::string(storage_errors::kCocoaDomain),
                            storage_errors::kWriteUnknown,
                            "Couldn't save: " + quoted(location) + " is not a notebook package."};

    if (auto error = package::checkNotebookFolder(location, m_files))
        return error;
    const Identifier& client = document.clientIdentifier();
    const std::string journalName = journalFileName(client);
    if (m_files.entryType(package / journalName) == EntryType::symbolicLink)
        return StorageError{std::string(storage_errors::kCocoaDomain),
                            storage_errors::kWriteUnknown,
                            "Couldn't save: this installation's journal “" + journalName + "” in " +
                                quoted(location) +
                                " is a symbolic link, which is never written through or "
                                "replaced. Put the journal itself in its place, then save again."};
    // The whole save is one step among this client's writers on this machine: they share the
    // temporary names, and the journal is read, merged and written without another writer in
    // between, so what another process added to it is kept.
    const std::unique_ptr<FileLock> lock = lockJournal(client, package);
    const std::filesystem::path images = package / package_layout::kImagesDirectory;
    std::set<std::string> onDisk = listStoredPictures(location);
    EntryType imagesType = m_files.entryType(images);
    if (imagesType == EntryType::missing) {
        auto error = m_files.createDirectory(images);
        if (error && m_files.entryType(images) != EntryType::directory)
            return writeError(error, "Couldn't make the pictures folder in " + quoted(location));
    } else if (imagesType != EntryType::directory) {
        return StorageError{std::string(storage_errors::kCocoaDomain),
                            storage_errors::kWriteUnknown,
                            "Couldn't save: “images” in " + quoted(location) + " is not a folder."};
    }
    clearOwnTemporaryFiles(client, images);
    clearOwnTemporaryFiles(client, package);
    if (auto error = writeNewPictures(document, images, onDisk, true))
        return error;

    diagnostics::writeLine("fileURL = " + location.string());
    std::vector<DirectoryEntry> entries;
    if (!m_files.listDirectory(package, entries))
        for (const DirectoryEntry& entry : entries)
            diagnostics::writeLine((location / entry.name).string());
    std::vector<std::string> foldedCopies;
    if (auto error = mergeOwnJournal(document, package, entries, foldedCopies))
        return error;

    const std::filesystem::path temporary = package / package_layout::temporaryJournalName(client);
    if (auto error = writeJournal(document, temporary))
        return error;
    // Kept where they can be: a journal only its owner may read stays so.
    m_files.copyPermissions(package / journalName, temporary);
    if (auto error = m_files.rename(temporary, package / journalName)) {
        m_files.removeFile(temporary);
        return writeError(error, "Couldn't replace the journal “" + journalName + "”");
    }
    if (auto error = m_files.syncDirectory(package))
        return writeError(error, "Couldn't save the notebook " + quoted(location));
    document.setOwnJournalIdentity(m_files.identity(package / journalName));
    // Their records are in the journal now, and the journal is on disk.
    for (const std::string& copy : foldedCopies)
        m_files.removeFile(package / copy);
    if (!foldedCopies.empty())
        m_files.syncDirectory(package);
    finishSave(document, true);
    return std::nullopt;
}

std::optional<StorageError> PackageWriter::buildPackage(Document& document,
                                                        const std::filesystem::path& directory) {
    const auto& current = document.fileLocation();
    const std::filesystem::path images = directory / package_layout::kImagesDirectory;
    if (auto error = m_files.createDirectory(images))
        return writeError(error, "Couldn't make the pictures folder");
    std::set<std::string> onDisk = listStoredPictures(current);
    if (auto error = writeNewPictures(document, images, onDisk, false))
        return error;
    if (current) {
        std::filesystem::path from =
            m_files.resolvedLink(*current) / package_layout::kImagesDirectory;
        for (const std::string& name : onDisk)
            if (auto error = m_files.copyFile(from / name, images / name))
                return writeError(error, "Couldn't carry over the picture “" + name + "”");
    }
    if (auto error =
            writeJournal(document, directory / journalFileName(document.clientIdentifier())))
        return error;
    if (current)
        if (auto error = carryOver(document, *current, directory))
            return error;
    if (auto error = m_files.syncDirectory(images))
        return writeError(error, "Couldn't save the pictures");
    if (auto error = m_files.syncDirectory(directory))
        return writeError(error, "Couldn't save the notebook");
    return std::nullopt;
}

std::optional<StorageError> PackageWriter::carryOver(Document& document,
                                                     const std::filesystem::path& from,
                                                     const std::filesystem::path& to) {
    // Other journals and any other top-level regular file travel byte for byte. A journal that
    // cannot be carried fails the save; any other file is reported and left out. Directories and
    // links are not carried.
    diagnostics::writeLine("fileURL = " + from.string());
    std::vector<DirectoryEntry> entries;
    if (m_files.listDirectory(m_files.resolvedLink(from), entries))
        return std::nullopt;
    std::string ownJournal = journalFileName(document.clientIdentifier());
    for (const DirectoryEntry& entry : entries) {
        std::filesystem::path source = from / entry.name;
        diagnostics::writeLine(source.string());
        if (entry.type != EntryType::regularFile ||
            entry.name.find(ownJournal) != std::string::npos ||
            package_layout::isTemporaryName(entry.name))
            continue;
        if (auto error =
                m_files.copyFile(m_files.resolvedLink(from) / entry.name, to / entry.name)) {
            m_files.removeFile(to / entry.name);
            diagnostics::writeLine("Error fileURL :" + source.string());
            // Leaving out another client's journal would lose its records.
            if (package_layout::isJournalName(entry.name))
                return writeError(error, "Couldn't carry over the journal “" + entry.name + "”");
        }
    }
    return std::nullopt;
}

std::optional<StorageError> PackageWriter::saveTo(Document& document,
                                                  const std::filesystem::path& location) {
    if (auto error = checkStamps(document))
        return error;
    const auto& current = document.fileLocation();
    if (current && sameLocation(m_files, *current, location) &&
        !checkSamePackage(document, m_files.resolvedLink(*current)))
        return saveInPlace(document);
    if (auto error = package::checkNotebookFolder(location, m_files))
        return error;
    std::filesystem::path parent = location.parent_path();
    if (parent.empty())
        parent = ".";
    // Built under ".<name>.<random>.quillery-tmp"; one left by an earlier save to the same
    // location that was stopped part-way is cleared first.
    const std::string buildingPrefix =
        package_layout::buildingDirectoryPrefix(location.filename().string());
    std::vector<DirectoryEntry> siblings;
    if (!m_files.listDirectory(parent, siblings))
        for (const DirectoryEntry& sibling : siblings)
            if (sibling.type == EntryType::directory && sibling.name.starts_with(buildingPrefix) &&
                package_layout::isTemporaryName(sibling.name))
                m_files.removeTree(parent / sibling.name);
    const std::filesystem::path building =
        parent / package_layout::buildingDirectoryName(location.filename().string(),
                                                       Identifier::makeRandom());
    if (auto error = m_files.createDirectory(building))
        return writeError(error, "Couldn't save the notebook " + quoted(location));
    if (auto error = buildPackage(document, building)) {
        m_files.removeTree(building);
        return error;
    }
    // Into place in one step; an existing package is swapped out whole, then removed.
    bool replacing = m_files.entryType(location) != EntryType::missing;
    std::error_code error =
        replacing ? m_files.exchange(building, location) : m_files.rename(building, location);
    if (error) {
        m_files.removeTree(building);
        return writeError(error, "Couldn't save the notebook " + quoted(location));
    }
    if (replacing)
        m_files.removeTree(building);
    if (auto syncError = m_files.syncDirectory(parent))
        return writeError(syncError, "Couldn't save the notebook " + quoted(location));
    bool hadLocation = current.has_value();
    document.setFileLocation(location);
    document.setPackageIdentity(m_files.identity(m_files.resolvedLink(location)));
    document.setOwnJournalIdentity(m_files.identity(m_files.resolvedLink(location) /
                                                    journalFileName(document.clientIdentifier())));
    finishSave(document, hadLocation);
    return std::nullopt;
}

void PackageWriter::finishSave(Document& document, bool hadLocation) {
    // The pictures are now files of the package and travel from there. A first save of an
    // untitled notebook keeps them in memory too; the next save finds them on disk and drops them.
    if (hadLocation)
        document.images().forgetNewImageData();
    document.markSaved();
}

} // namespace quillery
