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

// Reads the journal `name` in `package`. One larger than kMaximumJournalSize, or than the memory
// the machine has available, is refused before any of it is read, and so is one that memory
// runs out for: the error names the journal. `vanished` tells a journal that is no longer there
// (a sync tool renamed it since the listing); that gives no error.
std::optional<StorageError> readJournalFile(FileSystem& files, const std::filesystem::path& package,
                                            const std::string& name, FileContents& contents,
                                            bool& vanished);

// The error for a journal whose records did not fit in memory.
StorageError journalOutOfMemory(const std::string& name);

} // namespace quillery
