#include "storage/JournalLoader.h"

#include "storage/FileSystem.h"
#include "storage/JournalFile.h"
#include "storage/JournalReader.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace quillery {

JournalLoader::JournalLoader(FileSystem& files)
    : m_files(files) {
}

std::vector<JournalLoader::Journal> JournalLoader::load(const std::filesystem::path& package,
                                                        const std::vector<std::string>& fileNames) {
    std::vector<Journal> journals(fileNames.size());
    std::atomic<std::size_t> next = 0;
    const JournalSizeLimit limit(m_files);
    auto work = [&] {
        JournalReader reader;
        FileContents contents; // its memory serves every journal this worker reads
        for (std::size_t i = next++; i < journals.size(); i = next++) {
            Journal& journal = journals[i];
            journal.fileName = fileNames[i];
            try {
                bool vanished = false;
                journal.error =
                    readJournalFile(m_files, limit, package, journal.fileName, contents, vanished);
                // Renamed or removed since the listing (a sync tool replacing it): not a journal
                // now.
                journal.empty = vanished || (!journal.error && contents.size == 0);
                if (journal.empty || journal.error)
                    continue;
                auto outcome = reader.parse(contents, journal.fileName, journal.diffs);
                journal.error = std::move(outcome.error);
                journal.rejectedRecord = outcome.rejectedRecord;
            } catch (const std::bad_alloc&) {
                journal.diffs = {};
                journal.error = journalOutOfMemory(journal.fileName);
            }
        }
    };
    // One reader per processor: each holds a whole journal and its parser's index in memory.
    const std::size_t threads =
        std::min<std::size_t>(fileNames.size(), std::max(1u, std::thread::hardware_concurrency()));
    std::vector<std::jthread> workers;
    for (std::size_t i = 1; i < threads; ++i)
        workers.emplace_back(work);
    work();
    return journals;
}

} // namespace quillery
