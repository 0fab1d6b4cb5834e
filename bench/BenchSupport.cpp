#include "BenchSupport.h"

#include "model/JournalMerge.h"
#include "storage/JournalWriter.h"
#include "storage/PosixFileSystem.h"

#include <algorithm>
#include <fstream>
#include <malloc.h>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <time.h>

namespace quillery::bench {

namespace {

// A "VmRSS:"-style line of /proc/self/status, in bytes.
std::size_t statusBytes(std::string_view key) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.starts_with(key))
            return std::stoull(line.substr(key.size())) * 1024; // reported in kilobytes
    return 0;
}

double cpuNow(CpuClock clock) {
    timespec now{};
    ::clock_gettime(clock == CpuClock::thread ? CLOCK_THREAD_CPUTIME_ID : CLOCK_PROCESS_CPUTIME_ID,
                    &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

} // namespace

void Best::take(double wall, double cpu) {
    seconds = std::min(seconds, wall);
    cpuSeconds = std::min(cpuSeconds, cpu);
}

Stopwatch::Stopwatch(CpuClock clock)
    : m_clock(clock)
    , m_start(std::chrono::steady_clock::now())
    , m_cpuStart(cpuNow(clock)) {
}

double Stopwatch::seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
}

double Stopwatch::cpuSeconds() const {
    return cpuNow(m_clock) - m_cpuStart;
}

double peakMemoryMiB() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0; // Linux reports kilobytes
}

std::size_t residentBytes() {
    return statusBytes("VmRSS:");
}

std::size_t peakResidentBytes() {
    return statusBytes("VmHWM:");
}

void resetPeakMemory() {
    ::malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5"; // the kernel's reset of the peak
}

std::size_t heapInUseBytes() {
    const struct mallinfo2 info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
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
    if (!JournalWriter().write(*file, client, CurrentTime(), diffs) || file->close())
        throw std::runtime_error("cannot write " + path.string());
    return std::filesystem::file_size(path);
}

} // namespace quillery::bench
