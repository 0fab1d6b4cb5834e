#pragma once

#include "storage/FileSystem.h"
#include "storage/StorageError.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace quillery {

// The largest journal that is read. The parser indexes at most 4 GiB, and reading takes about
// twice the journal's size in memory besides the notes it builds; a journal this large holds
// some ten million records, far beyond what people write.
inline constexpr std::uint64_t kMaximumJournalSize = std::uint64_t{2} << 30;

// The size of the largest journal that may be read now: kMaximumJournalSize, or the memory the
// machine has available when that is less. Asked once for the journals read together.
struct JournalSizeLimit {
    std::uint64_t bytes = kMaximumJournalSize;
    std::uint64_t availableMemory = 0;

    explicit JournalSizeLimit(FileSystem& files);
};

// Reads the journal `name` in `package`. One larger than the limit is refused before any of it is
// read, and so is one that memory runs out for: the error names the journal. `vanished` tells a
// journal that is no longer there (a sync tool renamed it since the listing); that gives no
// error.
std::optional<StorageError> readJournalFile(FileSystem& files, const JournalSizeLimit& limit,
                                            const std::filesystem::path& package,
                                            const std::string& name, FileContents& contents,
                                            bool& vanished);

// The error for a journal whose records did not fit in memory.
StorageError journalOutOfMemory(const std::string& name);

} // namespace quillery
