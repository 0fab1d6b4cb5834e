#pragma once

#include "base/FileIdentity.h"
#include "base/HugePageAllocator.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <system_error>
#include <vector>

namespace quillery {

// What a directory entry is in itself: a link is reported as a link, never as its target.
enum class EntryType { missing, regularFile, directory, symbolicLink, other };

struct DirectoryEntry {
    std::string name;
    EntryType type = EntryType::other;
};

// Spare bytes after the end of every file read, so a JSON parser may read past the end safely.
inline constexpr std::size_t kFileContentsPadding = 64;

// Gives back the bytes of FileContents: a mapping of the file or memory of its own.
struct FileBytesRelease {
    std::size_t mappedBytes = 0; // nonzero for a mapping
    void operator()(char* bytes) const {
        if (mappedBytes != 0)
            ::munmap(bytes, mappedBytes);
        else
            std::free(bytes);
    }
};

// The bytes of a file, followed by kFileContentsPadding bytes of unspecified value. A large file
// is a private mapping of the file itself: its bytes are the kernel's cached pages, neither copied
// nor cleared first. Other files are read into memory of this object's own, which a later read
// into the same object reuses when it is large enough.
struct FileContents {
    std::unique_ptr<char[], FileBytesRelease> data;
    std::size_t size = 0;
    std::size_t capacity = 0; // the bytes data can take before its padding; 0 for a mapping

    // Room for a file of this size and the padding after it, reusing what is here when it is
    // large enough; throws bad_alloc. A large file is read in with few page faults.
    void reserve(std::size_t bytes) {
        if (data && data.get_deleter().mappedBytes == 0 && capacity >= bytes)
            return;
        data.reset();
        data.get_deleter().mappedBytes = 0;
        capacity = 0;
        auto* block = static_cast<char*>(allocatePreferringHugePages(bytes + kFileContentsPadding));
        if (!block)
            throw std::bad_alloc();
        data.reset(block);
        capacity = bytes;
    }

    std::string_view view() const { return {data.get(), size}; }
};

// Who may read a file once it is made.
enum class FileAccess {
    everyone,  // the files of a package, which sync tools and other programs read
    ownerOnly, // this installation's preferences
};

// A file being written. Nothing is durable before sync() returned without error.
class WritableFile {
public:
    virtual ~WritableFile() = default;
    virtual std::error_code append(std::string_view bytes) = 0;
    // Flushes the file's bytes to lasting storage.
    virtual std::error_code sync() = 0;
    virtual std::error_code close() = 0;
};

// An advisory lock on a file, held until this object is gone. The kernel drops it when the
// holder dies, so a crashed holder never leaves it locked.
class FileLock {
public:
    virtual ~FileLock() = default;
};

// The file operations packages are read and written with. Packages come from elsewhere, so no
// operation follows a symbolic link at the end of the path it is given: links are reported, not
// opened. The real implementation is PosixFileSystem; tests inject failures through a fake.
// readFile() may be called from several threads at once.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    // missing when nothing is there; links are not followed.
    virtual EntryType entryType(const std::filesystem::path& path) = 0;
    // The entries of a directory (without "." and ".."), in no particular order. Fails when the
    // path is a link.
    virtual std::error_code listDirectory(const std::filesystem::path& path,
                                          std::vector<DirectoryEntry>& entries) = 0;
    // Reads a whole regular file; fails on a link or anything but a regular file, and with
    // std::errc::file_too_large, before anything is read, on a file of more than `sizeLimit`
    // bytes.
    virtual std::error_code readFile(const std::filesystem::path& path, FileContents& contents,
                                     std::uint64_t sizeLimit) = 0;
    // Creates a new file; fails when anything (also a dangling link) is already there.
    virtual std::error_code createFile(const std::filesystem::path& path, FileAccess access,
                                       std::unique_ptr<WritableFile>& file) = 0;
    // Copies a regular file's bytes to a new file and flushes it; fails on a link.
    virtual std::error_code copyFile(const std::filesystem::path& from,
                                     const std::filesystem::path& to) = 0;
    virtual std::error_code createDirectory(const std::filesystem::path& path) = 0;
    // Makes the folder and every folder above it that is missing.
    virtual std::error_code createDirectories(const std::filesystem::path& path) = 0;
    // Replaces whatever file is at `to` in one step.
    virtual std::error_code rename(const std::filesystem::path& from,
                                   const std::filesystem::path& to) = 0;
    // Swaps two entries in one step (both must exist).
    virtual std::error_code exchange(const std::filesystem::path& a,
                                     const std::filesystem::path& b) = 0;
    // Removes a file or a link itself; succeeds when nothing is there.
    virtual std::error_code removeFile(const std::filesystem::path& path) = 0;
    // Removes a directory and everything below it without following links.
    virtual std::error_code removeTree(const std::filesystem::path& path) = 0;
    // Makes the directory's entries (creations, renames) durable.
    virtual std::error_code syncDirectory(const std::filesystem::path& path) = 0;
    // Where a path whose last part is a symbolic link leads, resolved all the way; the path itself
    // when it is no link or the link leads nowhere. For the places a user names (a package, the
    // preferences file), which may be links; nothing inside a package is ever resolved.
    virtual std::filesystem::path resolvedLink(const std::filesystem::path& path) = 0;
    // The entry itself (links are not followed); nothing when it is missing.
    virtual std::optional<FileIdentity> identity(const std::filesystem::path& path) = 0;
    // Copies the permission bits of the entry at `from` to the file at `to`.
    virtual std::error_code copyPermissions(const std::filesystem::path& from,
                                            const std::filesystem::path& to) = 0;
    // The bytes of memory the machine can give this process without swapping; the largest value
    // when that is unknown.
    virtual std::uint64_t availableMemory() = 0;
    // Waits for an exclusive lock on the file, making it and its folder when missing.
    virtual std::error_code lockExclusively(const std::filesystem::path& path,
                                            std::unique_ptr<FileLock>& lock) = 0;
};

} // namespace quillery
