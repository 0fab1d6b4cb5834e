#include "cli/Cli.h"

#include <iostream>
#include <unistd.h>

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    return quillery::cli::runCli(arguments, std::cin, std::cout, std::cerr,
                                 ::isatty(STDOUT_FILENO) == 1);
}
