#pragma once

#include "document/Preferences.h"

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace quillery {

class FileSystem;

// The installation's preferences as one small JSON object in a file, shared by the app and the
// command-line tool. Keys this program does not know are written back unchanged. Saving writes a
// temporary file beside the real one, flushes it and renames it over, so a crash never leaves a
// half-written file. A file that is not a JSON object reads as empty; the next save first moves
// it aside to "<file>.corrupt" (replacing an older backup), so nothing is overwritten unseen.
// Every file access goes through `files`, which must outlive the preferences.
class JsonFilePreferences : public Preferences {
public:
    explicit JsonFilePreferences(FileSystem& files, std::filesystem::path file = defaultLocation(),
                                 std::filesystem::path machineFile = "/etc/machine-id");

    // $XDG_CONFIG_HOME/quillery/preferences.json, or ~/.config/quillery/preferences.json.
    static std::filesystem::path defaultLocation();

    std::optional<std::string> string(std::string_view key) const override;
    void setString(std::string_view key, std::string value) override;
    // Writes the keys set since the last save over what the file holds now, so values another
    // process saved in between survive. Failures write one diagnostic line; values stay in memory.
    void synchronize() override;
    // The first line of the machine file (systemd's machine identifier).
    std::optional<std::string> machineIdentifier() const override { return m_machine; }

private:
    // A text, or any other JSON value kept as its exact JSON text.
    struct Value {
        bool isText;
        std::string content;
    };
    using Entries = std::vector<std::pair<std::string, Value>>;

    // Nothing when the file exists but is not a JSON object; empty when it does not exist.
    std::optional<Entries> load();
    static void set(Entries& entries, std::string_view key, Value value);
    bool writeAtomically(const Entries& entries);

    FileSystem& m_files;
    std::filesystem::path m_file;
    std::optional<std::string> m_machine;
    Entries m_entries;
    std::set<std::string, std::less<>> m_changedKeys;
};

} // namespace quillery
