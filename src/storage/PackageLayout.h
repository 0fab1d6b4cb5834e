#pragma once

#include "model/Identifier.h"

#include <string>
#include <string_view>

namespace quillery {

// The names inside a notebook package.
namespace package_layout {

inline constexpr std::string_view kImagesDirectory = "images";
// Any top-level file whose name holds this is read as a journal.
inline constexpr std::string_view kJournalMarker = ".journal";
// Files being written end in this; they are never read, carried over or taken for pictures.
inline constexpr std::string_view kTemporarySuffix = ".quillery-tmp";

// "<client>.journal"
std::string journalFileName(const Identifier& client);
bool isJournalName(std::string_view fileName);
// ".<client>.quillery-tmp": no ".journal" in it, so a reader never takes it for a journal.
std::string temporaryJournalName(const Identifier& client);
// ".<client>.<file name>.quillery-tmp", beside the picture in "images".
std::string temporaryPictureName(const Identifier& client, std::string_view fileName);
bool isTemporaryName(std::string_view fileName);
// A complete package is built beside its target under ".<package name>.<random>.quillery-tmp".
std::string buildingDirectoryPrefix(std::string_view packageName);
std::string buildingDirectoryName(std::string_view packageName, const Identifier& random);
// Whether the temporary file was made by this client (so it may be cleared: nobody else is
// writing it).
bool isOwnTemporaryName(std::string_view fileName, const Identifier& client);

// "<key>.<extension>"
std::string pictureFileName(const Identifier& key, std::string_view extension);
// The key a picture file is indexed under: its name with every ".jpg", then every ".png", then
// every ".tiff" taken out.
std::string pictureKeyFromFileName(std::string_view fileName);

// A name that stays inside the directory it is joined to: not empty, not "." or "..", without
// '/' or NUL.
bool isPlainFileName(std::string_view name);

} // namespace package_layout
} // namespace quillery
