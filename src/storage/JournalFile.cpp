#include "storage/JournalFile.h"

#include <algorithm>
#include <cstdio>
#include <new>

namespace quillery {

namespace {

std::string gibibytes(std::uint64_t bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f GiB", static_cast<double>(bytes) / (1 << 30));
    return text;
}

std::string quoted(const std::string& name) {
    return "“" + name + "”";
}

} // namespace

StorageError journalOutOfMemory(const std::string& name) {
    return StorageError{std::string(storage_errors::kCocoaDomain), storage_errors::kReadTooLarge,
                        "There is not enough memory to read the journal " + quoted(name) + "."};
}

JournalSizeLimit::JournalSizeLimit(FileSystem& files)
    : availableMemory(files.availableMemory()) {
    bytes = std::min(kMaximumJournalSize, availableMemory);
}

std::optional<StorageError> readJournalFile(FileSystem& files, const JournalSizeLimit& limit,
                                            const std::filesystem::path& package,
                                            const std::string& name, FileContents& contents,
                                            bool& vanished) {
    vanished = false;
    std::error_code error;
    try {
        error = files.readFile(package / name, contents, limit.bytes);
    } catch (const std::bad_alloc&) {
        return journalOutOfMemory(name);
    }
    if (error == std::errc::no_such_file_or_directory) {
        vanished = true;
        return std::nullopt;
    }
    if (error == std::errc::file_too_large) {
        const std::optional<FileIdentity> identity = files.identity(package / name);
        const std::string size =
            identity ? gibibytes(static_cast<std::uint64_t>(identity->size)) : "more";
        const std::string reason =
            limit.bytes < kMaximumJournalSize
                ? "the " + gibibytes(limit.availableMemory) + " of memory available"
                : "the " + gibibytes(kMaximumJournalSize) + " a journal may hold";
        return StorageError{std::string(storage_errors::kCocoaDomain),
                            storage_errors::kReadTooLarge,
                            "The journal " + quoted(name) + " is too large to read: " + size +
                                ", more than " + reason + "."};
    }
    if (error)
        return storage_errors::fromFileError(error, false,
                                             "Couldn't read the journal " + quoted(name));
    return std::nullopt;
}

} // namespace quillery
