#include "GeneratedJournals.h"

#include "model/JournalMerge.h"
#include "storage/JournalWriter.h"
#include "storage/PosixFileSystem.h"

#include <random>
#include <stdexcept>
#include <string>
#include <sys/resource.h>

namespace quillery::bench {

std::vector<DocumentDiff> generateLog(std::size_t records, TimePoint start,
                                      std::chrono::seconds span, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<DocumentDiff> diffs;
    diffs.reserve(records);
    std::vector<Identifier> notes;
    std::vector<Identifier> parentOf;
    std::vector<std::vector<std::size_t>> childrenOf; // by note index; last entry is the root's
    childrenOf.emplace_back();
    const Identifier root("root");
    for (std::size_t i = 0; i < records; ++i) {
        TimePoint stamp =
            start + span * static_cast<std::int64_t>(i) / static_cast<std::int64_t>(records);
        auto roll = static_cast<unsigned>(random() % 100);
        if (notes.size() < 50 || roll < 80) {
            // A new note under the note created 20 places before it: a tree about 20 wide.
            std::size_t parentIndex = notes.size() < 20 ? SIZE_MAX : notes.size() / 20 - 1;
            Identifier parent = parentIndex == SIZE_MAX ? root : notes[parentIndex];
            Identifier identifier = Identifier::makeRandom();
            PlainDictionary payload{{"identifier", PlainValue(identifier)},
                                    {"text", "Note " + std::to_string(i) + " of the day"},
                                    {"parent", PlainValue(parent)}};
            auto& siblings = childrenOf[parentIndex == SIZE_MAX ? 0 : parentIndex + 1];
            if (!siblings.empty() && roll % 7 == 0)
                payload.set("before", PlainValue(notes[siblings[random() % siblings.size()]]));
            diffs.emplace_back(stamp, identifier, std::move(payload));
            siblings.push_back(notes.size());
            notes.push_back(identifier);
            childrenOf.emplace_back();
        } else if (roll < 95) {
            const Identifier& note = notes[random() % notes.size()];
            diffs.emplace_back(stamp, note,
                               PlainDictionary{{"text", "Edited at " + std::to_string(i)}});
        } else {
            // A reorder among the children of a note that has several.
            const auto& siblings = childrenOf[1 + random() % (notes.size() / 20)];
            if (siblings.size() < 2) {
                --i;
                continue;
            }
            std::size_t a = random() % siblings.size();
            std::size_t b = (a + 1 + random() % (siblings.size() - 1)) % siblings.size();
            const Identifier& note = notes[siblings[a]];
            const Identifier& other = notes[siblings[b]];
            diffs.emplace_back(stamp, note,
                               PlainDictionary{{roll % 2 ? "before" : "after", PlainValue(other)}});
        }
    }
    return diffs;
}

std::size_t writeJournal(const std::filesystem::path& package, const Identifier& client,
                         const std::vector<DocumentDiff>& diffs) {
    std::filesystem::create_directories(package / "images");
    std::filesystem::path path = package / journalFileName(client);
    std::filesystem::remove(path);
    PosixFileSystem files;
    std::unique_ptr<WritableFile> file;
    if (files.createFile(path, FileAccess::everyone, file))
        throw std::runtime_error("cannot create " + path.string());
    if (!JournalWriter().write(*file, client, std::chrono::system_clock::now(), diffs) ||
        file->close())
        throw std::runtime_error("cannot write " + path.string());
    return std::filesystem::file_size(path);
}

ScratchDirectory::ScratchDirectory() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "quillery-bench-XXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
}

ScratchDirectory::~ScratchDirectory() {
    std::error_code error;
    std::filesystem::remove_all(m_path, error);
}

double peakMemoryMiB() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

} // namespace quillery::bench
