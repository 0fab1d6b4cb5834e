#include "storage/StorageError.h"

#include <cerrno>

namespace quillery::storage_errors {

StorageError fromFileError(const std::error_code& error, bool writing, std::string_view what) {
    long code = writing ? kWriteUnknown : kReadUnknown;
    if (error.category() == std::system_category() || error.category() == std::generic_category()) {
        switch (error.value()) {
        case ENOENT:
            code = writing ? kWriteUnknown : kReadNoSuchFile;
            break;
        case EACCES:
        case EPERM:
            code = writing ? kWriteNoPermission : kReadNoPermission;
            break;
        case ENOSPC:
        case EDQUOT:
            code = writing ? kWriteOutOfSpace : kReadUnknown;
            break;
        case EROFS:
            code = writing ? kWriteReadOnlyVolume : kReadUnknown;
            break;
        default:
            break;
        }
    }
    return StorageError{std::string(kCocoaDomain), code,
                        std::string(what) + ": " + error.message() + "."};
}

} // namespace quillery::storage_errors
