#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillery {

// This installation's small key-value settings (the client identifier among them).
class Preferences {
public:
    virtual ~Preferences() = default;
    virtual std::optional<std::string> string(std::string_view key) const = 0;
    virtual void setString(std::string_view key, std::string value) = 0;
    // Writes pending changes to lasting storage at once.
    virtual void synchronize() = 0;
};

inline constexpr std::string_view kClientIdentifierKey = "client-identifier";

} // namespace quillery
