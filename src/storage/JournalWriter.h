#pragma once

#include "model/DocumentDiff.h"
#include "storage/FileSystem.h"

#include <cstddef>
#include <string>
#include <system_error>
#include <vector>

namespace quillery {

// Writes one client's journal: "schema" "1.0", "version" (the number of records), "client",
// "last_modified" and "diffs", pretty-printed, each record in its journal form. A large log is
// formatted in blocks of records on worker threads while the blocks before go to the file in
// order, so it is never held twice in memory and the processors share the work.
class JournalWriter {
public:
    struct Result {
        std::error_code fileError;
        // A record held a text that is not valid UTF-8; the file must not be kept.
        bool invalidText = false;
        explicit operator bool() const { return !fileError && !invalidText; }
    };

    static constexpr std::size_t kRecordsPerBlock = 4096;

    explicit JournalWriter(std::size_t recordsPerBlock = kRecordsPerBlock);

    Result write(WritableFile& file, const Identifier& client, TimePoint savedAt,
                 const std::vector<DocumentDiff>& diffs);

private:
    std::size_t m_recordsPerBlock;
};

} // namespace quillery
