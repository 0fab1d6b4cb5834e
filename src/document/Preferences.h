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
    // The machine these preferences are used on, when it is known.
    virtual std::optional<std::string> machineIdentifier() const { return std::nullopt; }
};

inline constexpr std::string_view kClientIdentifierKey = "client-identifier";
// The machine the client identifier was made for: preferences copied to another machine (a home
// folder moved to a new laptop) get a new client identifier there, so that two machines never
// write one journal.
inline constexpr std::string_view kClientMachineKey = "client-machine";

} // namespace quillery
