#include "cli/StyleCommand.h"

#include <ostream>

namespace quillery::cli {

int runStyleCommand(const std::vector<std::string>&, std::istream&, std::ostream&,
                    std::ostream& err)
{
    err << "quillery-cli style: not available in this build\n";
    return 2;
}

} // namespace quillery::cli
