#pragma once

#include "model/DocumentDiff.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillery {

// How far a reader got in one journal file: the number of records it applied, and a hash of their
// stamps and notes in order. Journals grow at the end; when a file's first `count` records still
// hash alike, only the records after them are new.
struct JournalMark {
    std::size_t count = 0;
    std::uint64_t hash = 0;

    friend bool operator==(const JournalMark&, const JournalMark&) = default;
};
JournalMark markOf(const std::vector<DocumentDiff>& diffs, std::size_t count);

// Any top-level file of a package whose name holds this is read as a journal.
inline constexpr std::string_view kJournalMarker = ".journal";
// "<client>.journal". Journals merge in byte order of their names, so this name is part of the
// merged order.
std::string journalFileName(const Identifier& client);

// Records of one journal file, by its name.
struct NamedRecords {
    std::string journalName;
    std::vector<DocumentDiff> records;
    // How far the file is applied once these records are.
    std::optional<JournalMark> markAfter;
};

// Concatenates the journals in the order given and sorts by time stamp alone, stably, so records
// of the same second keep their journal order and every reader builds the same tree. When every
// journal is in time order already, as journals this program writes are, the same list is made in
// one pass: a merge that takes ties from the earlier journal first.
std::vector<DocumentDiff> MergedDiffsFromArrayOfDiffs(std::vector<std::vector<DocumentDiff>> diffs);

// Whether two records are the same record: the same stamp, note and payload (keys in any order).
bool sameRecord(const DocumentDiff& a, const DocumentDiff& b);

// The records of several copies of one client's journal (the journal and its sync tools' conflict
// copies, or the log in memory and the journal on disk), each record once: merged like
// MergedDiffsFromArrayOfDiffs, and a record that several copies hold is kept as often as the copy
// that holds it most often, at its first places. Records in just one copy are all kept.
std::vector<DocumentDiff> UnionOfJournals(std::vector<std::vector<DocumentDiff>> journals);

// The records that `held` lacks, in their order: a record `held` has n times is left out n times.
std::vector<DocumentDiff> RecordsMissingFrom(const std::vector<DocumentDiff>& records,
                                             const std::vector<DocumentDiff>& held);

} // namespace quillery
