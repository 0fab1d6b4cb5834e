#pragma once

#include <cstdint>

namespace quillery {

// What tells one version of a file from another without reading it: a rename over the file
// changes the inode, a write in place the size or the modification time.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t modifiedNanoseconds = 0;

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

} // namespace quillery
