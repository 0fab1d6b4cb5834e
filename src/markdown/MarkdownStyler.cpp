#include "markdown/MarkdownStyler.h"

#include "markdown/CharacterClasses.h"
#include "markdown/LineScanner.h"
#include "markdown/TagPair.h"
#include "markdown/Utf8.h"

#include <algorithm>
#include <array>

namespace quillery {

namespace {

constexpr std::size_t kMaxHeadingLevel = 6;

// Bytes that may begin a newline character: U+000A to U+000D, and the lead bytes of U+0085
// (C2 85), U+2028 and U+2029 (E2 80 A8, E2 80 A9).
constexpr std::array<bool, 256> kNewlineLead = [] {
    std::array<bool, 256> lead{};
    for (unsigned byte = 0x0A; byte <= 0x0D; ++byte) {
        lead[byte] = true;
    }
    lead[0xC2] = true;
    lead[0xE2] = true;
    return lead;
}();

// The length of the newline character at `at`, or 0 if there is none.
std::size_t newlineLength(std::string_view text, std::size_t at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte >= 0x0A && byte <= 0x0D) {
        return 1;
    }
    const char32_t c = utf8::decode(text, at).codePoint;
    if (c == 0x85) {
        return 2;
    }
    if (c == 0x2028 || c == 0x2029) {
        return 3;
    }
    return 0;
}

// The start of the code point that ends just before `end` (> 0) in well-formed UTF-8.
std::size_t previousCodePoint(std::string_view text, std::size_t end) {
    std::size_t start = end - 1;
    while (start > 0 && (static_cast<unsigned char>(text[start]) & 0xC0) == 0x80) {
        --start;
    }
    return start;
}

std::string_view trimmedOfWhitespaceAndNewlines(std::string_view text) {
    std::size_t start = 0;
    while (start < text.size()) {
        const utf8::Decoded decoded = utf8::decode(text, start);
        if (!charclass::isWhitespaceOrNewline(decoded.codePoint)) {
            break;
        }
        start += decoded.length;
    }
    std::size_t end = text.size();
    while (end > start) {
        const std::size_t last = previousCodePoint(text, end);
        if (!charclass::isWhitespaceOrNewline(utf8::decode(text, last).codePoint)) {
            break;
        }
        end = last;
    }
    return text.substr(start, end - start);
}

// One line of the source: its text runs from `start` to `end`, and its newline character, if any,
// is `separator` bytes long.
struct SourceLine {
    std::size_t start = 0;
    std::size_t end = 0;
    std::size_t separator = 0;

    std::string_view in(std::string_view text) const { return text.substr(start, end - start); }
};

SourceLine lineAt(std::string_view text, std::size_t start) {
    SourceLine line{start, start, 0};
    for (; line.end < text.size(); ++line.end) {
        if (kNewlineLead[static_cast<unsigned char>(text[line.end])]) {
            line.separator = newlineLength(text, line.end);
            if (line.separator != 0) {
                break;
            }
        }
    }
    return line;
}

// The heading level a line of "=" or "-" alone (spaces and tabs allowed) gives the line above it.
std::optional<LineType> underlineType(std::string_view line) {
    const std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string_view::npos || (line[first] != '=' && line[first] != '-')) {
        return std::nullopt;
    }
    const char mark = line[first];
    for (const char c : line.substr(first)) {
        if (c != mark && c != ' ' && c != '\t') {
            return std::nullopt;
        }
    }
    return mark == '=' ? LineType::h1 : LineType::h2;
}

// The length of a list item's prefix ("- ", "* ", or digits and ". ") at the start of `line`, or
// 0 when the line is no list item.
std::size_t listPrefixLength(std::string_view line) {
    if (line.starts_with("- ") || line.starts_with("* ")) {
        return 2;
    }
    const std::size_t digits = line.find_first_not_of("0123456789");
    if (digits == 0 || digits == std::string_view::npos) {
        return 0;
    }
    return line.substr(digits).starts_with(". ") ? digits + 2 : 0;
}

} // namespace

MarkdownStyler::MarkdownStyler(std::string_view text)
    : m_text(utf8::isValid(text) ? std::string(text) : utf8::sanitized(text)) {
}

std::vector<StyledRun> MarkdownStyler::attributedString() {
    std::vector<StyledRun> runs;
    // Enough for a typical note without regrowing (a run every few words); a huge text grows
    // as it goes rather than reserving far more than it may need.
    runs.reserve(std::min<std::size_t>(4 + m_text.size() / 24, 4096));
    const std::string_view text = m_text;
    bool skipLine = false;
    SourceLine line = lineAt(text, 0);
    for (;;) {
        const bool hasNext = line.end < text.size();
        std::optional<SourceLine> next;
        if (hasNext) {
            next = lineAt(text, line.end + line.separator);
        }
        if (skipLine) {
            skipLine = false;
        } else {
            std::optional<std::string_view> nextText;
            if (next) {
                nextText = next->in(text);
            }
            skipLine = styleLine(line.in(text), nextText, runs);
        }
        if (!next) {
            break;
        }
        line = *next;
    }
    return runs;
}

bool MarkdownStyler::styleLine(std::string_view line, std::optional<std::string_view> nextLine,
                               std::vector<StyledRun>& runs) {
    std::string_view text = line.empty() ? std::string_view(" ") : line;

    std::size_t level = 0;
    while (level < text.size() && text[level] == '#') {
        ++level;
    }
    if (level >= 1 && level <= kMaxHeadingLevel && level < text.size() && text[level] == ' ') {
        text = headingText(text.substr(level + 1), level);
        m_currentType = static_cast<LineType>(level - 1);
    }

    // Only a next line of underline characters alone is an underline, so "- eggs" under
    // "Shopping" stays a list item.
    const std::optional<LineType> underline =
        nextLine ? underlineType(*nextLine) : std::optional<LineType>();
    if (underline) {
        m_currentType = *underline;
    }

    if (const std::size_t prefix =
            m_currentType == LineType::body || underline ? listPrefixLength(text) : 0) {
        appendPiece(runs, text[0] == '-' || text[0] == '*' ? "\u2022 " : text.substr(0, prefix),
                    LineStyle::listMarker);
        text.remove_prefix(prefix);
    }
    if (!text.empty()) {
        scanInline(text, runs);
    }
    runs.push_back(StyledRun{true, "\n", LineType::body, LineStyle::none, std::nullopt});
    m_currentType = LineType::body;
    return underline.has_value();
}

std::string_view MarkdownStyler::headingText(std::string_view text, std::size_t level) {
    // Every run of `level` "#" is removed, scanning from the left, so a run of k "#" keeps its
    // last k mod level.
    m_heading.clear();
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t hash = text.find('#', at);
        m_heading.append(text.substr(at, hash == std::string_view::npos ? hash : hash - at));
        if (hash == std::string_view::npos) {
            break;
        }
        at = hash;
        std::size_t runEnd = at;
        while (runEnd < text.size() && text[runEnd] == '#') {
            ++runEnd;
        }
        m_heading.append((runEnd - at) % level, '#');
        at = runEnd;
    }
    return trimmedOfWhitespaceAndNewlines(m_heading);
}

void MarkdownStyler::scanInline(std::string_view text, std::vector<StyledRun>& runs) {
    LineScanner scanner(text);
    while (!scanner.atEnd()) {
        const std::optional<std::string_view> plain = scanner.takeUpToMarker();
        if (!plain) {
            appendSpan(scanner, runs);
            continue;
        }
        appendPiece(runs, *plain, LineStyle::none);
        const std::size_t markerStart = scanner.location();
        const TagPair tag = TagPair::fromMarkerRun(scanner.takeMarkerRun());
        // A marker run opens a span only when a word character follows it; a "[" always tries
        // to open a link. Otherwise the markers show as they are and the escapes are dropped.
        if (scanner.atWordCharacter() || tag.foundCharacters == "[") {
            scanner.setLocation(markerStart);
            appendSpan(scanner, runs);
        } else {
            appendPiece(runs, tag.foundCharacters, LineStyle::none);
        }
    }
}

void MarkdownStyler::appendSpan(LineScanner& scanner, std::vector<StyledRun>& runs) {
    const TagPair open = TagPair::fromMarkerRun(scanner.takeMarkerRun());
    LineStyle style = styleFromString(open.foundCharacters);
    std::optional<std::string_view> following;
    std::optional<std::string_view> linkTarget;
    if (style == LineStyle::link) {
        // Each skip takes a whole run of "]()", so "](" is passed in one step and a target ends
        // at the first of those characters.
        const std::optional<std::string_view> linkText = scanner.takeUpToLinkDelimiter();
        if (linkText && scanner.skip("]()")) {
            // A link with an empty target shows its text plainly, and the rest of its line.
            style = LineStyle::none;
            following = linkText;
        } else {
            scanner.skipLinkDelimiters();
            const std::optional<std::string_view> target = scanner.takeUpToLinkDelimiter();
            scanner.skipLinkDelimiters();
            if (linkText && target) {
                following = linkText;
                linkTarget = target;
            } else {
                style = LineStyle::none;
            }
        }
    } else {
        following = scanner.takeUpToMarker();
    }

    appendPiece(runs, open.escapedCharacters, style);
    if (following) {
        appendPiece(runs, *following, style, linkTarget);
    }
    // The closing run need not match the opening one; only its escapes show.
    const TagPair close = TagPair::fromMarkerRun(scanner.takeMarkerRun());
    appendPiece(runs, close.escapedCharacters, style);
}

void MarkdownStyler::appendPiece(std::vector<StyledRun>& runs, std::string_view text,
                                 LineStyle style,
                                 std::optional<std::string_view> linkTarget) const {
    if (text.empty()) {
        return;
    }
    StyledRun& run = runs.emplace_back();
    run.text = text;
    run.lineType = m_currentType;
    run.style = style;
    if (linkTarget) {
        run.link = std::string(*linkTarget);
    }
}

RunPresentation MarkdownStyler::presentation(const StyledRun& run) const {
    if (run.isLineTerminator) {
        return {};
    }
    struct LinePresentation {
        MyFontTextStyle textStyle;
        const BasicStyles* slot;
    };
    // h2 and h3 share a font but not a colour slot; h5 is the size of body text.
    const std::array<LinePresentation, 7> byLineType{{
        {MyFontTextStyle::title1, &h1},
        {MyFontTextStyle::title2, &h2},
        {MyFontTextStyle::title2, &h3},
        {MyFontTextStyle::headline, &h4},
        {MyFontTextStyle::subheadline, &h5},
        {MyFontTextStyle::footnote, &h6},
        {MyFontTextStyle::body, &body},
    }};
    const LinePresentation& line = byLineType.at(static_cast<std::size_t>(run.lineType));

    RunPresentation shown;
    shown.font = FontForTextStyle(line.textStyle);
    shown.foreground = line.slot->color;
    shown.font.bold = run.style == LineStyle::bold;
    shown.font.italic = run.style == LineStyle::italic;
    if (run.style == LineStyle::code) {
        shown.foreground = code.color;
    } else if (run.style == LineStyle::link) {
        shown.foreground = link.color;
    }
    shown.link = run.link;
    return shown;
}

} // namespace quillery
