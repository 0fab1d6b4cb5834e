#pragma once

#include "model/DocumentDiff.h"
#include "storage/FileSystem.h"

#include <chrono>
#include <string>
#include <system_error>
#include <vector>

namespace quillery {

// Writes one client's journal: "schema" "1.0", "version" (the number of records), "client",
// "last_modified" and "diffs", pretty-printed, each record in its journal form. The text goes to
// the file in chunks, so a large log is never held twice in memory.
class JournalWriter {
public:
    struct Result {
        std::error_code fileError;
        // A record held a text that is not valid UTF-8; the file must not be kept.
        bool invalidText = false;
        explicit operator bool() const { return !fileError && !invalidText; }
    };

    Result write(WritableFile& file, const Identifier& client, TimePoint savedAt,
                 const std::vector<DocumentDiff>& diffs);

private:
    const std::string& stampText(TimePoint time);

    std::string m_buffer;
    std::chrono::sys_seconds m_lastStampSecond{};
    std::chrono::sys_days m_lastStampDay{};
    std::string m_lastStampText;
};

} // namespace quillery
