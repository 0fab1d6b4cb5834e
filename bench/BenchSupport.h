#pragma once

#include "model/DocumentDiff.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <limits>
#include <vector>

namespace quillery::bench {

// The fastest of the runs of one measurement, by the clock and in processor time. The machine's
// other work (and its neighbours' on a shared host) only ever slows a run down, and shows in the
// clock more than in processor time.
struct Best {
    double seconds = std::numeric_limits<double>::max();
    double cpuSeconds = std::numeric_limits<double>::max();

    bool measured() const { return seconds < std::numeric_limits<double>::max(); }
    void take(double wall, double cpu);
};

// Processor time of the whole process (its workers included) or of the calling thread only.
enum class CpuClock { process, thread };

// Measures from when it is made.
class Stopwatch {
public:
    explicit Stopwatch(CpuClock clock = CpuClock::process);

    double seconds() const;
    double cpuSeconds() const;
    void stopInto(Best& best) const { best.take(seconds(), cpuSeconds()); }

private:
    CpuClock m_clock;
    std::chrono::steady_clock::time_point m_start;
    double m_cpuStart;
};

// The process's peak resident memory so far, in MiB.
double peakMemoryMiB();

// Resident memory of the process now and at its peak since the last resetPeakMemory(), in bytes.
std::size_t residentBytes();
std::size_t peakResidentBytes();
// Hands the allocator's free pages back to the system, then starts a new peak from what is
// resident, so the next peak is what the work after it added.
void resetPeakMemory();
// Bytes the allocator has handed out and not taken back.
std::size_t heapInUseBytes();

// Writes the records as the client's journal in the package (made if missing); gives its size.
std::size_t writeJournal(const std::filesystem::path& package, const Identifier& client,
                         const std::vector<DocumentDiff>& diffs);

} // namespace quillery::bench
