#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace quillery::cli {

// quillery-cli find PACKAGE QUERY... [--deleted] [--format text|json]: the notes holding every
// word of the query, in tree order. Exits 0 with matches, 1 with none (or when the package cannot
// be opened), 2 on bad usage.
// `outputIsTerminal`: see runCli.
int runFindCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
                   bool outputIsTerminal);

} // namespace quillery::cli
