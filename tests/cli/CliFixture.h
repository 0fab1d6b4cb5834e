#pragma once

#include "TemporaryDirectory.h"
#include "cli/Cli.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace quillery::cli {

struct Outcome {
    int exitCode;
    std::string out;
    std::string err;
};

// Runs the tool as a fresh installation: its own config folder, so its own client identifier,
// shared by all runs of the test, and a package path in a folder of its own.
class CliFixture : public ::testing::Test {
protected:
    CliFixture() { ::setenv("XDG_CONFIG_HOME", (m_directory / "config").c_str(), 1); }

    // `toTerminal`: as if standard output were a terminal.
    Outcome run(std::vector<std::string> arguments, bool toTerminal = false,
                const std::string& input = {}) {
        std::istringstream in(input);
        std::ostringstream out, err;
        const int exitCode = runCli(arguments, in, out, err, toTerminal);
        return {exitCode, out.str(), err.str()};
    }
    // Writes a file in the test's folder and gives its path.
    std::string write(const std::string& name, const std::string& content) {
        const std::string path = (m_directory / name).string();
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }
    // Adds a note and gives its identifier.
    std::string add(const std::string& text, std::vector<std::string> more = {}) {
        std::vector<std::string> arguments{"add", m_package, "--text", text};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome result = run(arguments);
        EXPECT_EQ(result.exitCode, kSuccess) << result.err;
        EXPECT_EQ(result.out.size(), 37u) << "one identifier and a line feed";
        return result.out.substr(0, 36);
    }

    testing_support::TemporaryDirectory m_folder;
    std::filesystem::path m_directory = m_folder.path();
    std::string m_package = (m_directory / "Notes.quillery").string();
};

} // namespace quillery::cli
