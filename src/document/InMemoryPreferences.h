#pragma once

#include "document/Preferences.h"

#include <functional>
#include <map>

namespace quillery {

// Preferences held in memory only, for tests and throw-away command-line runs.
class InMemoryPreferences : public Preferences {
public:
    std::optional<std::string> string(std::string_view key) const override;
    void setString(std::string_view key, std::string value) override;
    void synchronize() override;

    // How often synchronize() was called, so tests can see that a value was meant to last.
    int synchronizeCount() const { return m_synchronizeCount; }

private:
    std::map<std::string, std::string, std::less<>> m_values;
    int m_synchronizeCount = 0;
};

} // namespace quillery
