#include "storage/JsonFilePreferences.h"

#include "base/Diagnostics.h"
#include "storage/FileSystem.h"
#include "storage/JsonString.h"

#include <cstdlib>
#include <simdjson.h>
#include <unistd.h>

namespace quillery {

namespace {

// Preferences are a few keys; a larger file is no preferences file and reads as damaged.
constexpr std::uint64_t kMaximumFileSize = 16 << 20;
constexpr std::uint64_t kMaximumMachineFileSize = 4096;

void reportFailure(const std::filesystem::path& file, const std::string& what) {
    diagnostics::writeLine("Couldn't save preferences to " + file.string() + ": " + what);
}

} // namespace

JsonFilePreferences::JsonFilePreferences(FileSystem& files, std::filesystem::path file,
                                         std::filesystem::path machineFile)
    : m_files(files)
    , m_file(std::move(file)) {
    m_entries = load().value_or(Entries{});
    FileContents machine;
    if (!m_files.readFile(m_files.resolvedLink(machineFile), machine, kMaximumMachineFileSize)) {
        const std::string_view text = machine.view();
        const std::string_view line = text.substr(0, text.find('\n'));
        if (!line.empty())
            m_machine = std::string(line);
    }
}

std::filesystem::path JsonFilePreferences::defaultLocation() {
    std::filesystem::path base;
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && *config == '/')
        base = config;
    else if (const char* home = std::getenv("HOME"); home && *home)
        base = std::filesystem::path(home) / ".config";
    else
        base = std::filesystem::temp_directory_path();
    return base / "quillery" / "preferences.json";
}

std::optional<std::string> JsonFilePreferences::string(std::string_view key) const {
    for (const auto& [name, value] : m_entries)
        if (name == key)
            return value.isText ? std::optional(value.content) : std::nullopt;
    return std::nullopt;
}

void JsonFilePreferences::setString(std::string_view key, std::string value) {
    set(m_entries, key, Value{true, std::move(value)});
    m_changedKeys.emplace(key);
}

void JsonFilePreferences::synchronize() {
    if (m_changedKeys.empty())
        return;
    std::optional<Entries> onDisk = load();
    if (!onDisk) {
        std::filesystem::path backup = m_file;
        backup += ".corrupt";
        if (m_files.rename(m_file, backup)) {
            reportFailure(m_file, "the unreadable file could not be moved aside");
            return;
        }
        onDisk = Entries{};
    }
    for (const std::string& key : m_changedKeys) {
        for (const auto& [name, value] : m_entries)
            if (name == key)
                set(*onDisk, key, value);
    }
    if (!writeAtomically(*onDisk))
        return;
    m_entries = std::move(*onDisk);
    m_changedKeys.clear();
}

std::optional<JsonFilePreferences::Entries> JsonFilePreferences::load() {
    // The file may be a link the user made (a dotfile kept elsewhere); a dangling one is no file.
    const std::filesystem::path file = m_files.resolvedLink(m_file);
    const EntryType type = m_files.entryType(file);
    if (type == EntryType::missing || type == EntryType::symbolicLink)
        return Entries{};
    FileContents contents;
    if (m_files.readFile(file, contents, kMaximumFileSize))
        return std::nullopt;
    simdjson::dom::parser parser;
    simdjson::dom::object object;
    if (parser.parse(contents.data.get(), contents.size, false).get_object().get(object))
        return std::nullopt;
    Entries entries;
    for (auto field : object) {
        std::string_view text;
        if (!field.value.get_string().get(text))
            set(entries, field.key, Value{true, std::string(text)});
        else
            set(entries, field.key, Value{false, simdjson::minify(field.value)});
    }
    return entries;
}

void JsonFilePreferences::set(Entries& entries, std::string_view key, Value value) {
    for (auto& [name, existing] : entries) {
        if (name == key) {
            existing = std::move(value);
            return;
        }
    }
    entries.emplace_back(std::string(key), std::move(value));
}

bool JsonFilePreferences::writeAtomically(const Entries& entries) {
    std::string content = "{";
    for (std::size_t i = 0; i < entries.size(); ++i) {
        content += i == 0 ? "\n  " : ",\n  ";
        appendJsonString(content, entries[i].first);
        content += " : ";
        const Value& value = entries[i].second;
        if (value.isText)
            appendJsonString(content, value.content);
        else
            content += value.content;
    }
    content += entries.empty() ? "}\n" : "\n}\n";

    const std::filesystem::path directory = m_file.parent_path();
    if (m_files.createDirectories(directory)) {
        reportFailure(m_file, "the folder could not be made");
        return false;
    }
    std::filesystem::path temporary = m_file;
    temporary += ".tmp-" + std::to_string(::getpid());
    // Left by a process of the same number that stopped part-way.
    m_files.removeFile(temporary);
    std::unique_ptr<WritableFile> file;
    std::error_code error = m_files.createFile(temporary, FileAccess::ownerOnly, file);
    if (!error)
        error = file->append(content);
    if (!error)
        error = file->sync();
    if (!error)
        error = file->close();
    if (!error)
        error = m_files.rename(temporary, m_file);
    if (error) {
        reportFailure(m_file, error.message());
        file.reset();
        m_files.removeFile(temporary);
        return false;
    }
    // The rename itself lasts only once the folder is flushed.
    m_files.syncDirectory(directory);
    return true;
}

} // namespace quillery
