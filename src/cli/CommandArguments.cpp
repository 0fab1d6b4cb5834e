#include "cli/CommandArguments.h"

namespace quillery::cli {

CommandArguments::CommandArguments(const std::vector<std::string>& arguments,
                                   const std::set<std::string>& valueOptions,
                                   const std::set<std::string>& flags) {
    bool optionsEnded = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (optionsEnded || argument.size() < 2 || argument[0] != '-') {
            m_positional.push_back(argument);
        } else if (argument == "--") {
            optionsEnded = true;
        } else if (argument == "-h" || argument == "--help") {
            m_help = true;
        } else if (auto equals = argument.find('=');
                   equals != std::string::npos &&
                   valueOptions.contains(argument.substr(0, equals))) {
            m_values[argument.substr(0, equals)] = argument.substr(equals + 1);
        } else if (flags.contains(argument)) {
            m_flags.insert(argument);
        } else if (valueOptions.contains(argument)) {
            if (i + 1 == arguments.size()) {
                m_error = "option " + argument + " needs a value";
                return;
            }
            m_values[argument] = arguments[++i];
        } else {
            m_error = "unknown option " + argument;
            return;
        }
    }
}

std::optional<std::string> CommandArguments::value(const std::string& option) const {
    if (auto found = m_values.find(option); found != m_values.end())
        return found->second;
    return std::nullopt;
}

} // namespace quillery::cli
