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
    std::size_t start = 0;
    for (;;) {
        std::size_t end = start;
        std::size_t separator = 0;
        for (; end < text.size(); ++end) {
            if (kNewlineLead[static_cast<unsigned char>(text[end])]) {
                separator = newlineLength(text, end);
                if (separator != 0) {
                    break;
                }
            }
        }
        const bool hasNext = end < text.size();
        const std::size_t next = end + separator;
        if (skipLine) {
            skipLine = false;
        } else {
            // A next line that is empty has no first character.
            std::optional<char> nextLineStart;
            if (next < text.size()) {
                nextLineStart = text[next];
            }
            skipLine = styleLine(text.substr(start, end - start), nextLineStart, runs);
        }
        if (!hasNext) {
            break;
        }
        start = next;
    }
    return runs;
}

bool MarkdownStyler::styleLine(std::string_view line, std::optional<char> nextLineStart,
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

    // Only the first character of the next line, as it stands in the source, makes it an
    // underline; "- item" under a line consumes the item.
    bool consumesNext = false;
    if (nextLineStart == '=') {
        m_currentType = LineType::h1;
        consumesNext = true;
    }
    if (nextLineStart == '-') {
        m_currentType = LineType::h2;
        consumesNext = true;
    }

    if (!text.empty()) {
        scanInline(text, runs);
    }
    runs.push_back(StyledRun{true, "\n", LineType::body, LineStyle::none, std::nullopt});
    m_currentType = LineType::body;
    return consumesNext;
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
            appendSpan(scanner, true, runs);
            continue;
        }
        appendPiece(runs, *plain, LineStyle::none);
        const std::size_t markerStart = scanner.location();
        const TagPair tag = TagPair::fromMarkerRun(scanner.takeMarkerRun());
        // A marker run opens a span only when a word character follows it; a "[" always tries
        // to open a link. Otherwise the markers show as they are and the escapes are dropped.
        if (scanner.atWordCharacter() || tag.foundCharacters == "[") {
            scanner.setLocation(markerStart);
            appendSpan(scanner, false, runs);
        } else {
            appendPiece(runs, tag.foundCharacters, LineStyle::none);
        }
    }
}

void MarkdownStyler::appendSpan(LineScanner& scanner, bool atStartOfLine,
                                std::vector<StyledRun>& runs) {
    const TagPair open = TagPair::fromMarkerRun(scanner.takeMarkerRun());
    LineStyle style = styleFromString(open.foundCharacters);
    std::optional<std::string_view> following;
    std::optional<std::string_view> linkTarget;
    if (style == LineStyle::link) {
        // Each skip takes a whole run of "]()", so "](" is passed in one step and a target ends
        // at the first of those characters.
        const std::optional<std::string_view> linkText = scanner.takeUpToLinkDelimiter();
        scanner.skipLinkDelimiters();
        const std::optional<std::string_view> target = scanner.takeUpToLinkDelimiter();
        scanner.skipLinkDelimiters();
        if (linkText && target) {
            following = linkText;
            linkTarget = target;
        } else {
            style = LineStyle::none;
        }
    } else {
        following = scanner.takeUpToMarker();
    }

    appendPiece(runs, open.escapedCharacters, style);
    if (following) {
        if (style == LineStyle::code && atStartOfLine) {
            std::string indented = "\t";
            indented += *following;
            appendPiece(runs, indented, style, linkTarget);
        } else {
            appendPiece(runs, *following, style, linkTarget);
        }
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
    // Bold and italic look exactly like plain text of their line.
    if (run.style == LineStyle::code) {
        shown.foreground = code.color;
    } else if (run.style == LineStyle::link) {
        shown.foreground = link.color;
    }
    shown.link = run.link;
    return shown;
}

} // namespace quillery
