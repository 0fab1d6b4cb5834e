#include "FaultyFileSystem.h"

namespace quillery::testing {

namespace {

const std::error_code kInjected = std::make_error_code(std::errc::io_error);

class FaultyWritableFile : public WritableFile {
public:
    FaultyWritableFile(FaultyFileSystem& files, std::unique_ptr<WritableFile> file,
                       std::string name)
        : m_files(files)
        , m_file(std::move(file))
        , m_name(std::move(name)) {}

    std::error_code append(std::string_view bytes) override {
        return m_files.stepThen("append " + m_name, [&] { return m_file->append(bytes); });
    }
    std::error_code sync() override {
        return m_files.stepThen("sync " + m_name, [&] { return m_file->sync(); });
    }
    std::error_code close() override {
        return m_files.stepThen("close " + m_name, [&] { return m_file->close(); });
    }

private:
    FaultyFileSystem& m_files;
    std::unique_ptr<WritableFile> m_file;
    std::string m_name;
};

} // namespace

FaultyFileSystem::FaultyFileSystem(int failingStep, bool crash)
    : m_failingStep(failingStep)
    , m_crash(crash) {
}

std::error_code FaultyFileSystem::step(std::string what) {
    if (crashed())
        return kInjected;
    ++m_steps;
    m_log.push_back(std::move(what));
    if (m_steps != m_failingStep)
        return {};
    m_failed = true;
    return kInjected;
}

std::error_code FaultyFileSystem::createFile(const std::filesystem::path& path, FileAccess access,
                                             std::unique_ptr<WritableFile>& file) {
    if (auto error = step("create " + path.filename().string()))
        return error;
    std::unique_ptr<WritableFile> real;
    if (auto error = PosixFileSystem::createFile(path, access, real))
        return error;
    file = std::make_unique<FaultyWritableFile>(*this, std::move(real), path.filename().string());
    return {};
}

std::error_code FaultyFileSystem::copyFile(const std::filesystem::path& from,
                                           const std::filesystem::path& to) {
    return stepThen("copy " + from.filename().string(),
                    [&] { return PosixFileSystem::copyFile(from, to); });
}

std::error_code FaultyFileSystem::createDirectory(const std::filesystem::path& path) {
    return stepThen("mkdir " + path.filename().string(),
                    [&] { return PosixFileSystem::createDirectory(path); });
}

std::error_code FaultyFileSystem::createDirectories(const std::filesystem::path& path) {
    return stepThen("mkdirs " + path.filename().string(),
                    [&] { return PosixFileSystem::createDirectories(path); });
}

std::error_code FaultyFileSystem::rename(const std::filesystem::path& from,
                                         const std::filesystem::path& to) {
    return stepThen("rename " + from.filename().string(),
                    [&] { return PosixFileSystem::rename(from, to); });
}

std::error_code FaultyFileSystem::exchange(const std::filesystem::path& a,
                                           const std::filesystem::path& b) {
    return stepThen("exchange " + a.filename().string(),
                    [&] { return PosixFileSystem::exchange(a, b); });
}

std::error_code FaultyFileSystem::removeFile(const std::filesystem::path& path) {
    return crashed() ? kInjected : PosixFileSystem::removeFile(path);
}

std::error_code FaultyFileSystem::removeTree(const std::filesystem::path& path) {
    return crashed() ? kInjected : PosixFileSystem::removeTree(path);
}

std::error_code FaultyFileSystem::syncDirectory(const std::filesystem::path& path) {
    return stepThen("syncdir " + path.filename().string(),
                    [&] { return PosixFileSystem::syncDirectory(path); });
}

} // namespace quillery::testing
