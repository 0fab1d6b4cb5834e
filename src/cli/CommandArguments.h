#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quillery::cli {

// The arguments of one command: positional arguments, "--name VALUE" options and "--name" flags.
// "-h" is read as "--help"; "--" ends the options.
class CommandArguments {
public:
    // Fails (see error()) on an option the command does not take or one without its value.
    CommandArguments(const std::vector<std::string>& arguments,
                     const std::set<std::string>& valueOptions,
                     const std::set<std::string>& flags = {});

    const std::optional<std::string>& error() const { return m_error; }
    bool wantsHelp() const { return m_help; }
    const std::vector<std::string>& positional() const { return m_positional; }
    std::optional<std::string> value(const std::string& option) const;
    bool flag(const std::string& name) const { return m_flags.contains(name); }

private:
    std::vector<std::string> m_positional;
    std::map<std::string, std::string> m_values;
    std::set<std::string> m_flags;
    bool m_help = false;
    std::optional<std::string> m_error;
};

} // namespace quillery::cli
