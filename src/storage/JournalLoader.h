#pragma once

#include "model/DocumentDiff.h"
#include "storage/StorageError.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quillery {

class FileSystem;

// Reads and parses the journals of a package. Large notebooks have several big journals, so they
// are read and parsed on worker threads, one journal at a time each; the results come back in
// the order the names were given, and the caller's thread writes the diagnostic lines, so the
// outcome is the same as reading them one after another.
class JournalLoader {
public:
    struct Journal {
        std::string fileName;
        bool empty = false; // the file has no bytes or vanished since the listing; it is skipped
        std::vector<DocumentDiff> diffs;
        std::optional<StorageError> error;
        bool rejectedRecord = false; // "Bad diff." is due before the error is reported
    };

    // `files` must allow readFile() from several threads at once.
    explicit JournalLoader(FileSystem& files);

    std::vector<Journal> load(const std::filesystem::path& package,
                              const std::vector<std::string>& fileNames);

private:
    FileSystem& m_files;
};

} // namespace quillery
