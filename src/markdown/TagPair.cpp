#include "markdown/TagPair.h"

namespace quillery {

TagPair TagPair::fromMarkerRun(std::string_view run) {
    TagPair tag;
    if (run.find('\\') == std::string_view::npos) {
        tag.foundCharacters = run;
        return tag;
    }
    std::string matched(run);
    for (;;) {
        const std::size_t slash = matched.find('\\');
        if (slash == std::string::npos || slash + 1 >= matched.size()) {
            break;
        }
        // The pair goes to the escaped text with its backslashes removed, so an escaped
        // backslash shows nothing.
        if (matched[slash + 1] != '\\') {
            tag.escapedCharacters += matched[slash + 1];
        }
        matched.erase(slash, 2);
    }
    tag.foundCharacters = std::move(matched);
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
