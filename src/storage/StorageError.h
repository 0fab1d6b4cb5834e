#pragma once

#include <string>
#include <string_view>
#include <system_error>

namespace quillery {

// Why a package could not be read or written: a domain and code that identify the kind of
// failure, and a message for people that names the file concerned.
struct StorageError {
    std::string domain;
    long code = 0;
    std::string message;
};

// The domains and codes the storage layer reports (docs/package-format.md lists when).
namespace storage_errors {

// A journal that is JSON but not a journal: its top level, its "diffs" or one of its records.
inline constexpr std::string_view kOSStatusDomain = "NSOSStatusErrorDomain";
inline constexpr long kMalformedJournal = -4;

inline constexpr std::string_view kCocoaDomain = "NSCocoaErrorDomain";
inline constexpr long kReadUnknown = 256;
inline constexpr long kReadNoPermission = 257;
inline constexpr long kReadNoSuchFile = 260;
inline constexpr long kReadCorruptFile = 259;
// A journal larger than may be read, or than the memory available.
inline constexpr long kReadTooLarge = 263;
// The package is no longer at its location: moved, deleted or replaced since it was opened.
inline constexpr long kNoSuchPackage = 4;
inline constexpr long kWriteUnknown = 512;
inline constexpr long kWriteNoPermission = 513;
inline constexpr long kWriteOutOfSpace = 640;
inline constexpr long kWriteReadOnlyVolume = 642;
// A journal that is not valid JSON.
inline constexpr long kInvalidJson = 3840;
// A journal that could not be written as JSON (a text that is not valid UTF-8).
inline constexpr long kUnwritableJson = 3851;

// An error from the file layer, with the code that fits the system error. `what` says what was
// being done, naming the file ("Couldn't read “images/1.png”"); the system's reason is added.
StorageError fromFileError(const std::error_code& error, bool writing, std::string_view what);

} // namespace storage_errors
} // namespace quillery
