#include "TemporaryDirectory.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace quillery::testing_support {

TemporaryDirectory::TemporaryDirectory() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "quillery-test-XXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code error;
    std::filesystem::remove_all(m_path, error);
}

} // namespace quillery::testing_support
