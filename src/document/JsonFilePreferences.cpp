#include "document/JsonFilePreferences.h"

#include "base/Diagnostics.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <simdjson.h>
#include <unistd.h>

namespace quillery {

namespace {

void appendJsonString(std::string& out, std::string_view text) {
    out += '"';
    for (char c : text) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\r':
            out += "\\r";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
                out += escaped;
            } else {
                out += c;
            }
        }
    }
    out += '"';
}

bool writeAll(int fd, const std::string& content) {
    std::size_t written = 0;
    while (written < content.size()) {
        ssize_t n = ::write(fd, content.data() + written, content.size() - written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        written += static_cast<std::size_t>(n);
    }
    return true;
}

void reportFailure(const std::filesystem::path& file, const char* what) {
    std::string line = "Couldn't save preferences to ";
    line += file.string();
    line += ": ";
    line += what;
    diagnostics::writeLine(line);
}

} // namespace

JsonFilePreferences::JsonFilePreferences(std::filesystem::path file,
                                         std::filesystem::path machineFile)
    : m_file(std::move(file)) {
    m_entries = load(m_file).value_or(Entries{});
    std::ifstream machine(machineFile);
    std::string line;
    if (std::getline(machine, line) && !line.empty())
        m_machine = line;
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
    std::error_code error;
    const bool exists = std::filesystem::exists(m_file, error);
    std::optional<Entries> onDisk = exists ? load(m_file) : Entries{};
    if (!onDisk) {
        std::filesystem::path backup = m_file;
        backup += ".corrupt";
        std::filesystem::rename(m_file, backup, error);
        if (error) {
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

std::optional<JsonFilePreferences::Entries>
JsonFilePreferences::load(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::exists(file, error))
        return Entries{};
    simdjson::padded_string json;
    if (simdjson::padded_string::load(file.string()).get(json))
        return std::nullopt;
    simdjson::dom::parser parser;
    simdjson::dom::object object;
    if (parser.parse(json).get_object().get(object))
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

    std::error_code error;
    const std::filesystem::path directory = m_file.parent_path();
    std::filesystem::create_directories(directory, error);
    if (error) {
        reportFailure(m_file, "the folder could not be made");
        return false;
    }
    std::filesystem::path temporary = m_file;
    temporary += ".tmp-" + std::to_string(::getpid());
    int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) {
        reportFailure(m_file, std::strerror(errno));
        return false;
    }
    bool ok = writeAll(fd, content) && ::fsync(fd) == 0;
    ok = ::close(fd) == 0 && ok;
    if (!ok || ::rename(temporary.c_str(), m_file.c_str()) != 0) {
        reportFailure(m_file, std::strerror(errno));
        ::unlink(temporary.c_str());
        return false;
    }
    // The rename itself lasts only once the folder is flushed.
    if (int dirFd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); dirFd >= 0) {
        ::fsync(dirFd);
        ::close(dirFd);
    }
    return true;
}

} // namespace quillery
