#include "storage/PackageLayout.h"

namespace quillery::package_layout {

namespace {

void removeAll(std::string& text, std::string_view part) {
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at))
        text.erase(at, part.size());
}

} // namespace

std::string journalFileName(const Identifier& client) {
    return client.toString() + std::string(kJournalMarker);
}

bool isJournalName(std::string_view fileName) {
    return fileName.find(kJournalMarker) != std::string_view::npos;
}

std::string temporaryJournalName(const Identifier& client) {
    return "." + client.toString() + std::string(kTemporarySuffix);
}

std::string temporaryPictureName(const Identifier& client, std::string_view fileName) {
    return "." + client.toString() + "." + std::string(fileName) + std::string(kTemporarySuffix);
}

bool isTemporaryName(std::string_view fileName) {
    return fileName.ends_with(kTemporarySuffix);
}

bool isOwnTemporaryName(std::string_view fileName, const Identifier& client) {
    std::string prefix = "." + client.toString();
    return isTemporaryName(fileName) && fileName.starts_with(prefix) &&
           fileName.size() > prefix.size() && fileName[prefix.size()] == '.';
}

std::string pictureFileName(const Identifier& key, std::string_view extension) {
    return key.toString() + "." + std::string(extension);
}

std::string pictureKeyFromFileName(std::string_view fileName) {
    std::string key(fileName);
    removeAll(key, ".jpg");
    removeAll(key, ".png");
    removeAll(key, ".tiff");
    return key;
}

bool isPlainFileName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

} // namespace quillery::package_layout
