#pragma once

#include <string>

namespace quillery {

// Why a package could not be read or written: a domain and code that identify the kind of
// failure, and a message for people that names the file concerned.
struct StorageError {
    std::string domain;
    long code = 0;
    std::string message;
};

} // namespace quillery
