#include "document/InMemoryPreferences.h"

namespace quillery {

std::optional<std::string> InMemoryPreferences::string(std::string_view key) const {
    auto found = m_values.find(key);
    if (found == m_values.end())
        return std::nullopt;
    return found->second;
}

void InMemoryPreferences::setString(std::string_view key, std::string value) {
    m_values.insert_or_assign(std::string(key), std::move(value));
}

void InMemoryPreferences::synchronize() {
    ++m_synchronizeCount;
}

} // namespace quillery
