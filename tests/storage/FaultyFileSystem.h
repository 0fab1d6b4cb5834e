#pragma once

#include "storage/PosixFileSystem.h"

#include <string>
#include <vector>

namespace quillery::testing {

// The real file layer with one failure injected: the n-th step that changes the disk (creating,
// writing, flushing, closing, copying, renaming, making a folder, flushing a folder) fails with an
// input/output error. In crash mode every later change fails too, as if the process had died
// there: nothing is cleaned up.
class FaultyFileSystem : public PosixFileSystem {
public:
    FaultyFileSystem(int failingStep, bool crash);

    bool failed() const { return m_failed; }
    // What each step was, for messages.
    const std::vector<std::string>& log() const { return m_log; }

    // Counts one step; gives the injected error when this step is to fail.
    std::error_code step(std::string what);
    // The step, then the real change unless the step failed.
    template <typename Change>
    std::error_code stepThen(std::string what, Change change) {
        if (auto error = step(std::move(what)))
            return error;
        return change();
    }

    std::error_code createFile(const std::filesystem::path& path, FileAccess access,
                               std::unique_ptr<WritableFile>& file) override;
    std::error_code copyFile(const std::filesystem::path& from,
                             const std::filesystem::path& to) override;
    std::error_code createDirectory(const std::filesystem::path& path) override;
    std::error_code createDirectories(const std::filesystem::path& path) override;
    std::error_code rename(const std::filesystem::path& from,
                           const std::filesystem::path& to) override;
    std::error_code exchange(const std::filesystem::path& a,
                             const std::filesystem::path& b) override;
    std::error_code removeFile(const std::filesystem::path& path) override;
    std::error_code removeTree(const std::filesystem::path& path) override;
    std::error_code syncDirectory(const std::filesystem::path& path) override;

private:
    bool crashed() const { return m_crash && m_failed; }

    int m_failingStep;
    bool m_crash;
    int m_steps = 0;
    bool m_failed = false;
    std::vector<std::string> m_log;
};

} // namespace quillery::testing
