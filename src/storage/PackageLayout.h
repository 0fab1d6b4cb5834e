#pragma once

#include "model/Identifier.h"
#include "model/JournalMerge.h"

#include <string>
#include <string_view>

namespace quillery {

// The names inside a notebook package.
namespace package_layout {

inline constexpr std::string_view kPackageExtension = ".quillery";
inline constexpr std::string_view kImagesDirectory = "images";
// Files being written end in this; they are never read, carried over or taken for pictures.
inline constexpr std::string_view kTemporarySuffix = ".quillery-tmp";

// Endings of files that sync tools and downloads are still writing (".tmp" also covers
// Unison's "….unison.tmp" and Syncthing's ".syncthing.….tmp").
inline constexpr std::string_view kForeignTemporarySuffixes[] = {".tmp", ".part", ".partial",
                                                                 ".crdownload", ".!sync"};

// A name with ".journal" in it, unless it is hidden (starts with "." or "~") or ends in a
// temporary suffix: those are files a sync tool or an editor is still writing.
bool isJournalName(std::string_view fileName);
// Whose journal the file is, for copies of one journal: the name up to its first "." or space
// ("<client>.journal", "<client>.sync-conflict-….journal", "<client> (… conflicted copy
// ….journal").
std::string_view journalClientKey(std::string_view fileName);
// A sync tool's conflict copy of the client's journal (Syncthing's ".sync-conflict-", the
// "conflicted copy" of cloud folders).
bool isConflictCopyOf(std::string_view fileName, const Identifier& client);
// ".<client>.quillery-tmp": no ".journal" in it, so a reader never takes it for a journal.
std::string temporaryJournalName(const Identifier& client);
// ".<client>.<file name>.quillery-tmp", beside the picture in "images".
std::string temporaryPictureName(const Identifier& client, std::string_view fileName);
bool isTemporaryName(std::string_view fileName);
// A complete package is built beside its target under ".<package name>.<random>.quillery-tmp".
std::string buildingDirectoryPrefix(std::string_view packageName);
std::string buildingDirectoryName(std::string_view packageName, const Identifier& random);
// Where a stray entry in the way of a temporary file (a folder) is moved: "<name>.<random>.aside",
// which no reader takes for a journal, a picture or a temporary file.
std::string asideName(std::string_view fileName, const Identifier& random);
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
