#include "storage/PosixFileSystem.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <limits>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quillery {

namespace {

std::error_code lastError() {
    return {errno, std::system_category()};
}

EntryType typeFromMode(mode_t mode) {
    if (S_ISREG(mode))
        return EntryType::regularFile;
    if (S_ISDIR(mode))
        return EntryType::directory;
    if (S_ISLNK(mode))
        return EntryType::symbolicLink;
    return EntryType::other;
}

// Closes the descriptor when leaving scope.
class FileDescriptor {
public:
    explicit FileDescriptor(int fd)
        : m_fd(fd) {}
    ~FileDescriptor() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int get() const { return m_fd; }

private:
    int m_fd;
};

std::error_code writeAll(int fd, const char* data, std::size_t size) {
    while (size > 0) {
        ssize_t written = ::write(fd, data, size);
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return lastError();
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return {};
}

// Opens a regular file for reading without following a link at the end of the path.
std::error_code openRegularFile(const std::filesystem::path& path, int& fd, std::size_t& size) {
    fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return lastError();
    struct stat info {};
    if (::fstat(fd, &info) != 0) {
        auto error = lastError();
        ::close(fd);
        return error;
    }
    if (!S_ISREG(info.st_mode)) {
        ::close(fd);
        return std::make_error_code(S_ISDIR(info.st_mode) ? std::errc::is_a_directory
                                                          : std::errc::invalid_argument);
    }
    size = static_cast<std::size_t>(info.st_size);
    return {};
}

// Maps a large file when its padding fits in its last page, which the kernel fills with zeros past
// the end; a page wholly past the end could not be read. Every writer of journals (this program,
// sync tools) replaces a file by renaming a new one over it, which leaves a mapping of the old one
// intact.
bool mapFile(int fd, std::size_t size, FileContents& contents) {
    constexpr std::size_t kMapFrom = std::size_t{1} << 20;
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t tail = size % page;
    if (size < kMapFrom || tail == 0 || page - tail < kFileContentsPadding)
        return false;
    const std::size_t length = size + kFileContentsPadding;
    void* mapped =
        ::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_POPULATE, fd, 0);
    if (mapped == MAP_FAILED)
        return false;
    // Cut short since it was opened: read what is there instead.
    struct stat info {};
    if (::fstat(fd, &info) != 0 || static_cast<std::size_t>(info.st_size) < size) {
        ::munmap(mapped, length);
        return false;
    }
    contents.data.reset(static_cast<char*>(mapped));
    contents.data.get_deleter().mappedBytes = length;
    contents.size = size;
    contents.capacity = 0;
    return true;
}

class PosixWritableFile : public WritableFile {
public:
    explicit PosixWritableFile(int fd)
        : m_fd(fd) {}
    ~PosixWritableFile() override {
        if (m_fd >= 0)
            ::close(m_fd);
    }

    std::error_code append(std::string_view bytes) override {
        if (auto error = writeAll(m_fd, bytes.data(), bytes.size()))
            return error;
        m_written += bytes.size();
        // Start writing large files out while more is being made, so the flush at the end is
        // short. Only a hint: sync() still decides what is durable.
        if (m_written - m_writingOutFrom >= kWriteOutStep) {
            ::sync_file_range(m_fd, static_cast<off_t>(m_writingOutFrom),
                              static_cast<off_t>(m_written - m_writingOutFrom),
                              SYNC_FILE_RANGE_WRITE);
            m_writingOutFrom = m_written;
        }
        return {};
    }

    std::error_code sync() override { return ::fsync(m_fd) == 0 ? std::error_code{} : lastError(); }

    std::error_code close() override {
        int fd = std::exchange(m_fd, -1);
        return fd < 0 || ::close(fd) == 0 ? std::error_code{} : lastError();
    }

private:
    static constexpr std::size_t kWriteOutStep = 8 << 20;

    int m_fd;
    std::size_t m_written = 0;
    std::size_t m_writingOutFrom = 0;
};

} // namespace

EntryType PosixFileSystem::entryType(const std::filesystem::path& path) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0)
        return errno == ENOENT || errno == ENOTDIR ? EntryType::missing : EntryType::other;
    return typeFromMode(info.st_mode);
}

std::error_code PosixFileSystem::listDirectory(const std::filesystem::path& path,
                                               std::vector<DirectoryEntry>& entries) {
    entries.clear();
    int fd = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return lastError();
    DIR* directory = ::fdopendir(fd);
    if (!directory) {
        auto error = lastError();
        ::close(fd);
        return error;
    }
    errno = 0;
    while (const dirent* entry = ::readdir(directory)) {
        std::string_view name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        struct stat info {};
        EntryType type = EntryType::other;
        if (::fstatat(fd, entry->d_name, &info, AT_SYMLINK_NOFOLLOW) == 0)
            type = typeFromMode(info.st_mode);
        entries.push_back(DirectoryEntry{std::string(name), type});
        errno = 0;
    }
    auto error = errno != 0 ? lastError() : std::error_code{};
    ::closedir(directory);
    return error;
}

std::error_code PosixFileSystem::readFile(const std::filesystem::path& path, FileContents& contents,
                                          std::uint64_t sizeLimit) {
    int rawFd = -1;
    std::size_t size = 0;
    if (auto error = openRegularFile(path, rawFd, size))
        return error;
    FileDescriptor fd(rawFd);
    if (size > sizeLimit)
        return std::make_error_code(std::errc::file_too_large);
    if (mapFile(fd.get(), size, contents))
        return {};
    contents.reserve(size);
    contents.size = 0;
    // The file may change while it is read: take what is there, up to the size seen at open.
    while (contents.size < size) {
        ssize_t got = ::read(fd.get(), contents.data.get() + contents.size, size - contents.size);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return lastError();
        }
        if (got == 0)
            break;
        contents.size += static_cast<std::size_t>(got);
    }
    std::fill_n(contents.data.get() + contents.size, kFileContentsPadding, '\0');
    return {};
}

std::error_code PosixFileSystem::createFile(const std::filesystem::path& path, FileAccess access,
                                            std::unique_ptr<WritableFile>& file) {
    const mode_t mode = access == FileAccess::ownerOnly ? 0600 : 0644;
    int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
    if (fd < 0)
        return lastError();
    file = std::make_unique<PosixWritableFile>(fd);
    return {};
}

std::error_code PosixFileSystem::copyFile(const std::filesystem::path& from,
                                          const std::filesystem::path& to) {
    int rawIn = -1;
    std::size_t size = 0;
    if (auto error = openRegularFile(from, rawIn, size))
        return error;
    FileDescriptor in(rawIn);
    std::unique_ptr<WritableFile> out;
    if (auto error = createFile(to, FileAccess::everyone, out))
        return error;
    constexpr std::size_t kChunk = 1 << 20;
    auto buffer = std::make_unique_for_overwrite<char[]>(kChunk);
    for (;;) {
        ssize_t got = ::read(in.get(), buffer.get(), kChunk);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return lastError();
        }
        if (got == 0)
            break;
        if (auto error = out->append({buffer.get(), static_cast<std::size_t>(got)}))
            return error;
    }
    if (auto error = out->sync())
        return error;
    return out->close();
}

std::error_code PosixFileSystem::createDirectory(const std::filesystem::path& path) {
    return ::mkdir(path.c_str(), 0755) == 0 ? std::error_code{} : lastError();
}

std::error_code PosixFileSystem::createDirectories(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::create_directories(path, error);
    return error;
}

std::error_code PosixFileSystem::rename(const std::filesystem::path& from,
                                        const std::filesystem::path& to) {
    return ::rename(from.c_str(), to.c_str()) == 0 ? std::error_code{} : lastError();
}

std::error_code PosixFileSystem::exchange(const std::filesystem::path& a,
                                          const std::filesystem::path& b) {
    return ::renameat2(AT_FDCWD, a.c_str(), AT_FDCWD, b.c_str(), RENAME_EXCHANGE) == 0
               ? std::error_code{}
               : lastError();
}

std::error_code PosixFileSystem::removeFile(const std::filesystem::path& path) {
    if (::unlink(path.c_str()) == 0 || errno == ENOENT)
        return {};
    return lastError();
}

std::error_code PosixFileSystem::removeTree(const std::filesystem::path& path) {
    // std::filesystem::remove_all removes links themselves and never descends through them.
    std::error_code error;
    std::filesystem::remove_all(path, error);
    return error;
}

std::error_code PosixFileSystem::syncDirectory(const std::filesystem::path& path) {
    FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.get() < 0)
        return lastError();
    return ::fsync(fd.get()) == 0 ? std::error_code{} : lastError();
}

namespace {

class PosixFileLock : public FileLock {
public:
    explicit PosixFileLock(int fd)
        : m_fd(fd) {}
    ~PosixFileLock() override { ::close(m_fd); }
    PosixFileLock(const PosixFileLock&) = delete;
    PosixFileLock& operator=(const PosixFileLock&) = delete;

private:
    int m_fd;
};

} // namespace

std::filesystem::path PosixFileSystem::resolvedLink(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::is_symlink(std::filesystem::symlink_status(path, error)))
        return path;
    std::filesystem::path target = std::filesystem::canonical(path, error);
    return error ? path : target;
}

std::optional<FileIdentity> PosixFileSystem::identity(const std::filesystem::path& path) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0)
        return std::nullopt;
    return FileIdentity{static_cast<std::uint64_t>(info.st_dev),
                        static_cast<std::uint64_t>(info.st_ino), info.st_size,
                        info.st_mtim.tv_sec * 1'000'000'000 + info.st_mtim.tv_nsec};
}

std::error_code PosixFileSystem::copyPermissions(const std::filesystem::path& from,
                                                 const std::filesystem::path& to) {
    struct stat info {};
    if (::lstat(from.c_str(), &info) != 0)
        return lastError();
    return ::chmod(to.c_str(), info.st_mode & 07777) == 0 ? std::error_code{} : lastError();
}

std::uint64_t PosixFileSystem::availableMemory() {
    // MemAvailable counts the caches the kernel would give up too, which free pages alone miss.
    if (std::FILE* meminfo = std::fopen("/proc/meminfo", "re")) {
        char line[256];
        unsigned long long kibibytes = 0;
        bool found = false;
        while (!found && std::fgets(line, sizeof line, meminfo))
            found = std::sscanf(line, "MemAvailable: %llu kB", &kibibytes) == 1;
        std::fclose(meminfo);
        if (found)
            return std::uint64_t{kibibytes} * 1024;
    }
    const long pages = ::sysconf(_SC_AVPHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    if (pages > 0 && pageSize > 0)
        return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize);
    return std::numeric_limits<std::uint64_t>::max();
}

std::error_code PosixFileSystem::lockExclusively(const std::filesystem::path& path,
                                                 std::unique_ptr<FileLock>& lock) {
    // Not through the virtual createDirectories: a lock is no change to a package.
    if (auto error = PosixFileSystem::createDirectories(path.parent_path()))
        return error;
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0)
        return lastError();
    while (::flock(fd, LOCK_EX) != 0) {
        if (errno != EINTR) {
            std::error_code failure = lastError();
            ::close(fd);
            return failure;
        }
    }
    lock = std::make_unique<PosixFileLock>(fd);
    return {};
}

} // namespace quillery
