#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace quillery::cli {

// The package commands of quillery-cli; each takes the arguments after its name and returns the
// exit code.
int runNewCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);
int runAddCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);
// `outputIsTerminal`: see runCli.
int runInfoCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
                   bool outputIsTerminal);

} // namespace quillery::cli
