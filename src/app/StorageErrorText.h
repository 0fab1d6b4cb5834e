#pragma once

#include <QString>

#include <string_view>

namespace quillery {

struct StorageError;

// The errors the app raises itself, for a path given to open that is no notebook.
namespace app_errors {
inline constexpr std::string_view kDomain = "quillery.app";
inline constexpr long kNoSuchNotebook = 1;
inline constexpr long kNotANotebook = 2;
} // namespace app_errors

// What a warning about a notebook that could not be read or saved says below its headline: the
// reason, which names the file, and what the user can do about it, chosen by the kind of
// failure. Never the error's domain or code, which mean nothing to people (the command-line tool
// prints those for scripts).
QString storageErrorDetails(const StorageError& error, bool saving);

} // namespace quillery
