#include "cli/Cli.h"
#include "cli/NotebookSession.h"

#include <iostream>
#include <new>
#include <unistd.h>

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    // The process ends with the command: its memory goes back to the system all at once.
    quillery::cli::NotebookSession::leaveDocumentsToExit();
    // Opening a package reports running out of memory itself; this covers everything else.
    try {
        return quillery::cli::runCli(arguments, std::cin, std::cout, std::cerr,
                                     ::isatty(STDOUT_FILENO) == 1);
    } catch (const std::bad_alloc&) {
        std::cerr << "quillery-cli: there is not enough memory to go on.\n";
        return quillery::cli::kPackageFailure;
    }
}
