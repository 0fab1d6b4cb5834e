#pragma once

#include "storage/JournalWriter.h"
#include "storage/NotebookPackage.h"

#include <set>

namespace quillery {

class FileSystem;

// Saves a document as a package.
//
// Nothing is written when the clock or a change to save lies outside the years 0001 to 9999,
// which stamps cannot show.
//
// In place: new pictures first (each written to a temporary file, flushed and renamed), then this
// client's journal to a temporary file that no reader takes for a journal, flushed, renamed over
// the old journal, and the directory flushed. Nothing else in the package is touched, so another
// client saving into the same package at the same moment loses nothing, and a save that stops
// part-way leaves the previous journal in place. The journal keeps its permission bits. The
// package must still be the folder the document was read from or saved to: one that was moved,
// deleted or replaced is never written (so never rebuilt from this client's journal alone), and
// this client's journal must not be a link.
//
// To a new location: the complete package is built in a hidden directory beside the target
// (journal, new pictures, and every picture and top-level regular file of the current package
// carried over byte for byte, links never followed), flushed, then moved into place in one step.
class PackageWriter {
public:
    explicit PackageWriter(FileSystem& files);

    std::optional<StorageError> saveInPlace(Document& document);
    std::optional<StorageError> saveTo(Document& document, const std::filesystem::path& location);

private:
    // Lists the current package's pictures, writing the diagnostic lines; empty when there are
    // none or the package has no location.
    std::set<std::string> listStoredPictures(const std::optional<std::filesystem::path>& package);
    std::optional<StorageError> writeNewPictures(Document& document,
                                                 const std::filesystem::path& imagesLocation,
                                                 const std::set<std::string>& onDisk,
                                                 bool throughTemporaryFiles);
    std::optional<StorageError> writeJournal(Document& document, const std::filesystem::path& path);
    // Held while this client's journal is read, merged and written; null when no lock file could
    // be made.
    std::unique_ptr<FileLock> lockJournal(const Identifier& client,
                                          const std::filesystem::path& package);
    // Adopts what this client's journal on disk (when it changed since this process last read or
    // wrote it) and its conflict copies hold that the document lacks. The copies whose records
    // were taken are named in `foldedCopies`.
    std::optional<StorageError> mergeOwnJournal(Document& document,
                                                const std::filesystem::path& package,
                                                const std::vector<DirectoryEntry>& entries,
                                                std::vector<std::string>& foldedCopies);
    std::optional<StorageError> carryOver(Document& document, const std::filesystem::path& from,
                                          const std::filesystem::path& to);
    std::optional<StorageError> buildPackage(Document& document,
                                             const std::filesystem::path& directory);
    void clearOwnTemporaryFiles(const Identifier& client, const std::filesystem::path& directory);
    // Makes way for a temporary file at `path`: a file or link there is a leftover of this
    // client's and goes; anything else (a folder) is renamed aside, as it may hold someone's data.
    std::error_code clearTemporaryPath(const std::filesystem::path& path);
    // Whether the folder at the document's location is the package it was read from or last
    // saved to.
    std::optional<StorageError> checkSamePackage(const Document& document,
                                                 const std::filesystem::path& package);
    void finishSave(Document& document, bool hadLocation);

    FileSystem& m_files;
    JournalWriter m_journalWriter;
};

} // namespace quillery
