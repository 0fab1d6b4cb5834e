#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace quillery::cli {

// Exit codes of quillery-cli.
inline constexpr int kSuccess = 0;
inline constexpr int kPackageFailure = 1; // a package or file could not be read or written
inline constexpr int kUsageError = 2;
inline constexpr int kNoMatches = 1; // find found nothing

// Runs one quillery-cli command line (the arguments after the program name) and returns the
// process exit code. Results go to `out`; messages and the engine's diagnostic lines go to `err`.
// `outputIsTerminal` says whether `out` is a terminal, where results show control characters
// escaped unless --raw is given.
int runCli(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
           std::ostream& err, bool outputIsTerminal = false);

} // namespace quillery::cli
