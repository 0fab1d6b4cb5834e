#include "storage/JournalChanges.h"

#include "storage/FileSystem.h"
#include "storage/JournalFile.h"
#include "storage/JournalReader.h"
#include "storage/PackageLayout.h"

#include <algorithm>

namespace quillery {

JournalChanges readJournalChanges(const std::filesystem::path& package,
                                  const std::map<std::string, FileIdentity>& identities,
                                  const std::map<std::string, JournalMark>& marks,
                                  FileSystem& files) {
    JournalChanges changes;
    std::vector<DirectoryEntry> entries;
    if (auto error = files.listDirectory(package, entries)) {
        changes.error = storage_errors::fromFileError(error, false, "Couldn't read the notebook");
        return changes;
    }
    std::vector<std::string> names;
    for (const DirectoryEntry& entry : entries)
        if (entry.type == EntryType::regularFile && package_layout::isJournalName(entry.name))
            names.push_back(entry.name);
    std::sort(names.begin(), names.end());
    for (const auto& [name, mark] : marks)
        if (mark.count > 0 && !std::binary_search(names.begin(), names.end(), name))
            changes.needsReplay = true; // its records would no longer be replayed
    JournalReader reader;
    const JournalSizeLimit limit(files);
    for (const std::string& name : names) {
        std::optional<FileIdentity> identity = files.identity(package / name);
        if (!identity)
            continue;
        changes.identities.emplace(name, *identity);
        auto known = identities.find(name);
        if (known != identities.end() && known->second == *identity)
            continue;
        FileContents contents;
        bool vanished = false;
        if (auto error = readJournalFile(files, limit, package, name, contents, vanished)) {
            changes.error = std::move(error);
            return changes;
        }
        if (vanished) {
            changes.identities.erase(name);
            continue;
        }
        std::vector<DocumentDiff> diffs;
        if (contents.size > 0)
            if (auto parseError = reader.read(contents, name, diffs)) {
                changes.error = std::move(parseError);
                return changes;
            }
        auto mark = marks.find(name);
        if (mark == marks.end()) {
            // A copy of a journal already applied shares its records: a replay applies them once.
            const std::string_view client = package_layout::journalClientKey(name);
            for (const auto& [applied, unused] : marks)
                if (package_layout::journalClientKey(applied) == client)
                    changes.needsReplay = true;
            JournalMark after = markOf(diffs, diffs.size());
            changes.appended.push_back({name, std::move(diffs), after});
            continue;
        }
        if (diffs.size() < mark->second.count ||
            markOf(diffs, mark->second.count) != mark->second) {
            changes.needsReplay = true;
            continue;
        }
        JournalMark after = markOf(diffs, diffs.size());
        diffs.erase(diffs.begin(), diffs.begin() + static_cast<std::ptrdiff_t>(mark->second.count));
        changes.appended.push_back({name, std::move(diffs), after});
    }
    return changes;
}

} // namespace quillery
