#pragma once

#include "markdown/StyledRun.h"

#include <string>
#include <string_view>

namespace quillery {

// One run of marker characters, split into the markers that decide a style and the characters
// escaped by a backslash, which are shown.
struct TagPair {
    std::string foundCharacters;   // the markers left once escapes are taken out
    std::string escapedCharacters; // the escaped characters, every backslash removed

    // Splits a marker run. Each backslash escapes the character after it, left to right. A
    // backslash with nothing after it (a lone one, or the last of a longer run) stays among the
    // found markers.
    static TagPair fromMarkerRun(std::string_view run);
};

// Classifies a whole marker run: "**" and "__" bold, "*" and "_" italic, "`" code, "[" link;
// anything else (the empty run, "***", "**_", a backslash...) none.
LineStyle styleFromString(std::string_view markers);

} // namespace quillery
