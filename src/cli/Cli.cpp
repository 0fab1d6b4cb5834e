#include "cli/Cli.h"

#include "cli/FindCommand.h"
#include "cli/NotebookCommands.h"
#include "cli/OutlineCommands.h"
#include "cli/StyleCommand.h"
#include "outline/TerminalText.h"

#include <ostream>
#include <string_view>

namespace quillery::cli {

namespace {

constexpr std::string_view kUsage =
    "Usage: quillery-cli COMMAND [ARGUMENTS]\n"
    "\n"
    "Reads and writes Quillery notebook packages without the app.\n"
    "\n"
    "Commands:\n"
    "  new PACKAGE                           create an empty notebook package\n"
    "  export [--format json|markdown|opml|html|text] [--pretty] [--raw] [--output FILE]\n"
    "         PACKAGE [--note IDENTIFIER]    write the notes of a package or of one note\n"
    "  import PACKAGE FILE [--parent IDENTIFIER] [--format opml|markdown|text]\n"
    "                                        add an outline's notes and save the package\n"
    "  add PACKAGE --text TEXT [--parent IDENTIFIER] [--at INDEX]\n"
    "                                        add a note and save the package\n"
    "  info [--raw] PACKAGE                  journals, notes, pictures, time to open\n"
    "  find PACKAGE QUERY... [--deleted] [--format text|json] [--raw]\n"
    "                                        the notes that hold every word of the query\n"
    "  style                                 style a note's text (standard input) as JSON\n"
    "\n"
    "Run \"quillery-cli COMMAND --help\" for more about one command, \"quillery-cli --version\"\n"
    "for the version.\n"
    "Exit status: 0 on success, 1 when a package or file cannot be read or written, 2 on bad\n"
    "usage.\n"
    "Results go to standard output; messages and diagnostics to standard error.\n"
    "Control characters of notes and file names are shown as \\x1b in messages, and in results\n"
    "written to a terminal unless --raw is given; to a pipe or a file results keep their bytes.\n";

} // namespace

int runCli(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
           std::ostream& err, bool outputIsTerminal) {
    if (arguments.empty()) {
        err << kUsage;
        return kUsageError;
    }
    const std::string& command = arguments.front();
    std::vector<std::string> rest(arguments.begin() + 1, arguments.end());
    if (command == "-h" || command == "--help" || command == "help") {
        out << kUsage;
        return kSuccess;
    }
    if (command == "--version" || command == "version") {
        out << "quillery-cli " << QUILLERY_VERSION << '\n';
        return kSuccess;
    }
    if (command == "new")
        return runNewCommand(rest, out, err);
    if (command == "export")
        return runExportCommand(rest, out, err, outputIsTerminal);
    if (command == "import")
        return runImportCommand(rest, out, err);
    if (command == "add")
        return runAddCommand(rest, out, err);
    if (command == "info")
        return runInfoCommand(rest, out, err, outputIsTerminal);
    if (command == "find")
        return runFindCommand(rest, out, err, outputIsTerminal);
    if (command == "style")
        return runStyleCommand(rest, in, out, err);
    err << "quillery-cli: unknown command “" << terminal_text::shown(command) << "”\n\n" << kUsage;
    return kUsageError;
}

} // namespace quillery::cli
