#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace quillery::cli {

// `quillery-cli style`: reads a note's text from standard input and prints its styled runs as a
// JSON array. `arguments` are those after "style". Returns the process exit code.
int runStyleCommand(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
                    std::ostream& err);

} // namespace quillery::cli
