#pragma once

#include "base/FileIdentity.h"
#include "model/JournalMerge.h"
#include "storage/StorageError.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quillery {

class FileSystem;

// What the journals of an open package gained since a document applied them.
struct JournalChanges {
    // Records at the end of journals whose first records are the ones applied, and every record
    // of journals new to the document; for Document::mergeRecords().
    std::vector<NamedRecords> appended;
    // A journal lost or rewrote records, vanished, or a copy of another client's journal appeared:
    // only a replay places everything right.
    bool needsReplay = false;
    // Every journal now in the package; hand them to Document::setJournalIdentities() once the
    // records are merged.
    std::map<std::string, FileIdentity> identities;
    // A journal that cannot be read or is damaged: the document stays as it is.
    std::optional<StorageError> error;
};

// Reads the journals whose files changed since the document saw them (`identities`, `marks`:
// copies of the document's journalIdentities() and journalMarks()). Touches no document, so it
// may run on any thread.
JournalChanges readJournalChanges(const std::filesystem::path& package,
                                  const std::map<std::string, FileIdentity>& identities,
                                  const std::map<std::string, JournalMark>& marks,
                                  FileSystem& files);

} // namespace quillery
