#pragma once

#include "storage/FileSystem.h"

namespace quillery {

// The file layer over POSIX calls. Links at the end of a path are never followed (O_NOFOLLOW,
// lstat); writes are flushed with fsync.
class PosixFileSystem : public FileSystem {
public:
    EntryType entryType(const std::filesystem::path& path) override;
    std::error_code listDirectory(const std::filesystem::path& path,
                                  std::vector<DirectoryEntry>& entries) override;
    std::error_code readFile(const std::filesystem::path& path, FileContents& contents,
                             std::uint64_t sizeLimit) override;
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
    std::filesystem::path resolvedLink(const std::filesystem::path& path) override;
    std::optional<FileIdentity> identity(const std::filesystem::path& path) override;
    std::error_code copyPermissions(const std::filesystem::path& from,
                                    const std::filesystem::path& to) override;
    std::uint64_t availableMemory() override;
    std::error_code lockExclusively(const std::filesystem::path& path,
                                    std::unique_ptr<FileLock>& lock) override;
};

} // namespace quillery
