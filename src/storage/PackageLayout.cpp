#include "storage/PackageLayout.h"

namespace quillery::package_layout {

namespace {

// Joins the parts. (Chains of operator+ on strings trip a false -Wrestrict in GCC 12 at -O3.)
std::string joined(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (std::string_view part : parts)
        text.append(part);
    return text;
}

void removeAll(std::string& text, std::string_view part) {
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at))
        text.erase(at, part.size());
}

} // namespace

bool isJournalName(std::string_view fileName) {
    if (fileName.find(kJournalMarker) == std::string_view::npos || fileName.starts_with('.') ||
        fileName.starts_with('~') || isTemporaryName(fileName))
        return false;
    for (std::string_view suffix : kForeignTemporarySuffixes)
        if (fileName.ends_with(suffix))
            return false;
    return true;
}

std::string_view journalClientKey(std::string_view fileName) {
    return fileName.substr(0, fileName.find_first_of(". "));
}

bool isConflictCopyOf(std::string_view fileName, const Identifier& client) {
    return isJournalName(fileName) && journalClientKey(fileName) == client.toString() &&
           (fileName.find(".sync-conflict-") != std::string_view::npos ||
            fileName.find("conflicted copy") != std::string_view::npos);
}

std::string temporaryJournalName(const Identifier& client) {
    return joined({".", client.toString(), kTemporarySuffix});
}

std::string temporaryPictureName(const Identifier& client, std::string_view fileName) {
    return joined({".", client.toString(), ".", fileName, kTemporarySuffix});
}

bool isTemporaryName(std::string_view fileName) {
    return fileName.ends_with(kTemporarySuffix);
}

std::string buildingDirectoryPrefix(std::string_view packageName) {
    return joined({".", packageName, "."});
}

std::string buildingDirectoryName(std::string_view packageName, const Identifier& random) {
    return joined({".", packageName, ".", random.toString(), kTemporarySuffix});
}

std::string asideName(std::string_view fileName, const Identifier& random) {
    return joined({fileName, ".", random.toString(), ".aside"});
}

bool isOwnTemporaryName(std::string_view fileName, const Identifier& client) {
    std::string prefix = joined({".", client.toString()});
    return isTemporaryName(fileName) && fileName.starts_with(prefix) &&
           fileName.size() > prefix.size() && fileName[prefix.size()] == '.';
}

std::string pictureFileName(const Identifier& key, std::string_view extension) {
    return joined({key.toString(), ".", extension});
}

std::string pictureKeyFromFileName(std::string_view fileName) {
    std::string key(fileName);
    removeAll(key, ".jpg");
    removeAll(key, ".png");
    removeAll(key, ".tiff");
    // A picture dropped as a file keeps the format it came in (KEY.gif, KEY.bmp, ...); its key is
    // still the UUID before the extension.
    const auto dot = key.rfind('.');
    if (dot != std::string::npos && Identifier(std::string_view(key).substr(0, dot)).isUuid())
        key.resize(dot);
    return key;
}

bool isPlainFileName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

} // namespace quillery::package_layout
