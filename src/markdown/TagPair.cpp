#include "markdown/TagPair.h"

namespace quillery {

TagPair TagPair::fromMarkerRun(std::string_view run) {
    TagPair tag;
    if (run.find('\\') == std::string_view::npos) {
        tag.foundCharacters = run;
        return tag;
    }
    // One pass, left to right: each backslash takes the character after it out of the run, so a
    // run of any length splits in linear time.
    for (std::size_t at = 0; at < run.size(); ++at) {
        if (run[at] != '\\' || at + 1 == run.size()) {
            tag.foundCharacters += run[at];
            continue;
        }
        // The pair goes to the escaped text with its backslashes removed, so an escaped
        // backslash shows nothing.
        ++at;
        if (run[at] != '\\') {
            tag.escapedCharacters += run[at];
        }
    }
    return tag;
}

LineStyle styleFromString(std::string_view markers) {
    if (markers == "**" || markers == "__") {
        return LineStyle::bold;
    }
    if (markers == "*" || markers == "_") {
        return LineStyle::italic;
    }
    if (markers == "`") {
        return LineStyle::code;
    }
    if (markers == "[") {
        return LineStyle::link;
    }
    return LineStyle::none;
}

} // namespace quillery
