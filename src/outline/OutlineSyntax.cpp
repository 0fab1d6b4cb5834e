#include "outline/OutlineSyntax.h"

namespace quillery::outline_syntax {

namespace {

bool endsToken(std::string_view line, std::size_t at) {
    return at == line.size() || line[at] == ' ' || line[at] == '\t';
}

// A line of only one of the characters, at least `least` of them, with spaces and tabs between.
bool isRuleOf(std::string_view line, char c, std::size_t least) {
    std::size_t count = 0;
    for (char each : line) {
        if (each == c)
            ++count;
        else if (each != ' ' && each != '\t')
            return false;
    }
    return count >= least;
}

bool startsMarkdownBlock(std::string_view line) {
    if (line.empty() || line[0] == ' ' || line[0] == '\t' || line[0] == '>')
        return true;
    if (listMarkerLength(line) > 0)
        return true;
    switch (line[0]) {
    case '#': {
        std::size_t hashes = line.find_first_not_of('#');
        hashes = hashes == std::string_view::npos ? line.size() : hashes;
        return hashes <= 6 && endsToken(line, hashes);
    }
    case '-':
    case '*':
    case '_':
    case '=':
        return isRuleOf(line, line[0], line[0] == '=' || line[0] == '-' ? 1 : 3);
    case '`':
    case '~':
        return line.starts_with("```") || line.starts_with("~~~");
    default:
        return false;
    }
}

} // namespace

std::string noteLine(const NoteView& note, bool withUrl) {
    std::string line;
    if (note.picture) {
        const std::string key =
            note.picture->key.empty() ? std::string() : " " + std::string(note.picture->key);
        if (!note.picture->file.empty())
            line += "[picture" + key + "](<" + note.picture->file.string() + ">)";
        else
            line += "(picture" + key + ", not in the package)";
        if (!note.text.empty())
            line += ' ';
    }
    line += note.text;
    if (withUrl && note.url && *note.url != note.text) {
        line += " <";
        line += *note.url;
        line += '>';
    }
    return line;
}

std::size_t listMarkerLength(std::string_view line) {
    if (line.empty())
        return 0;
    if (line[0] == '-' || line[0] == '*' || line[0] == '+')
        return endsToken(line, 1) ? 1 : 0;
    std::size_t digits = 0;
    while (digits < line.size() && digits < 10 && line[digits] >= '0' && line[digits] <= '9')
        ++digits;
    if (digits == 0 || digits > 9 || digits == line.size())
        return 0;
    if (line[digits] != '.' && line[digits] != ')')
        return 0;
    return endsToken(line, digits + 1) ? digits + 1 : 0;
}

bool markdownLineNeedsEscape(std::string_view line) {
    const std::size_t start = line.find_first_not_of('\\');
    return startsMarkdownBlock(start == std::string_view::npos ? "" : line.substr(start));
}

bool textLineNeedsEscape(std::string_view line) {
    const std::size_t start = line.find_first_not_of(" \t\\");
    return start != std::string_view::npos && listMarkerLength(line.substr(start)) > 0;
}

bool markdownFirstLineNeedsEscape(std::string_view line) {
    if (markdownLineNeedsEscape(line))
        return true;
    const std::size_t start = line.find_first_not_of('\\');
    if (line[start] != '[')
        return false;
    // A label ends at the first "]" that no backslash escapes; only "]:" makes a definition.
    std::size_t backslashes = 0;
    for (std::size_t i = start + 1; i < line.size(); ++i) {
        if (line[i] == ']' && backslashes % 2 == 0)
            return i + 1 < line.size() ? line[i + 1] == ':' : true;
        backslashes = line[i] == '\\' ? backslashes + 1 : 0;
    }
    return true;
}

std::string_view withoutEscape(std::string_view line, bool (*needsEscape)(std::string_view)) {
    if (line.starts_with('\\') && needsEscape(line.substr(1)))
        return line.substr(1);
    return line;
}

Indentation indentationOf(std::string_view line) {
    Indentation indentation;
    for (; indentation.length < line.size(); ++indentation.length) {
        if (line[indentation.length] == ' ')
            ++indentation.columns;
        else if (line[indentation.length] == '\t')
            indentation.columns = (indentation.columns / 4 + 1) * 4;
        else
            break;
    }
    return indentation;
}

std::string_view withoutColumns(std::string_view line, std::size_t columns) {
    std::size_t column = 0;
    std::size_t i = 0;
    for (; i < line.size() && column < columns; ++i) {
        if (line[i] == ' ')
            ++column;
        else if (line[i] == '\t')
            column = (column / 4 + 1) * 4;
        else
            break;
    }
    return line.substr(i);
}

} // namespace quillery::outline_syntax
