#pragma once

#include "model/DocumentDiff.h"

#include <cstddef>
#include <filesystem>
#include <vector>

namespace quillery::bench {

// A client's log as a long-used notebook has it: mostly new notes in a tree about twenty wide,
// some text edits and reorders, spread evenly over `span` from `start`.
std::vector<DocumentDiff> generateLog(std::size_t records, TimePoint start,
                                      std::chrono::seconds span, unsigned seed);

// Writes the log as the client's journal in the package (made if missing); returns its size.
std::size_t writeJournal(const std::filesystem::path& package, const Identifier& client,
                         const std::vector<DocumentDiff>& diffs);

// A fresh folder under the system's temporary directory, removed with its contents.
class ScratchDirectory {
public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

// The process's peak resident memory so far, in MiB.
double peakMemoryMiB();

} // namespace quillery::bench
