#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace quillery::cli {

// quillery-cli export and import. `outputIsTerminal` says whether `out` is a terminal, where
// control characters of note texts are shown escaped unless --raw is given.
int runExportCommand(const std::vector<std::string>& arguments, std::ostream& out,
                     std::ostream& err, bool outputIsTerminal);
int runImportCommand(const std::vector<std::string>& arguments, std::ostream& out,
                     std::ostream& err);

} // namespace quillery::cli
