#include "markdown/LineScanner.h"

#include "markdown/CharacterClasses.h"
#include "markdown/Utf8.h"

namespace quillery {

namespace {

bool isMarkerByte(char byte) {
    return charclass::isMarker(static_cast<unsigned char>(byte));
}

bool isLinkDelimiterByte(char byte) {
    return charclass::isLinkDelimiter(static_cast<unsigned char>(byte));
}

} // namespace

LineScanner::LineScanner(std::string_view line)
    : m_line(line) {
}

template <typename InSet>
std::optional<std::string_view> LineScanner::takeUpTo(InSet inSet) {
    const std::size_t start = m_location;
    std::size_t end = start;
    while (end < m_line.size() && !inSet(m_line[end])) {
        ++end;
    }
    if (end == start) {
        return std::nullopt;
    }
    m_location = end;
    return m_line.substr(start, end - start);
}

template <typename InSet>
std::string_view LineScanner::takeFrom(InSet inSet) {
    const std::size_t start = m_location;
    while (m_location < m_line.size() && inSet(m_line[m_location])) {
        ++m_location;
    }
    return m_line.substr(start, m_location - start);
}

std::optional<std::string_view> LineScanner::takeUpToMarker() {
    return takeUpTo(isMarkerByte);
}

std::string_view LineScanner::takeMarkerRun() {
    return takeFrom(isMarkerByte);
}

std::optional<std::string_view> LineScanner::takeUpToLinkDelimiter() {
    return takeUpTo(isLinkDelimiterByte);
}

void LineScanner::skipLinkDelimiters() {
    takeFrom(isLinkDelimiterByte);
}

bool LineScanner::skip(std::string_view text) {
    if (!m_line.substr(m_location).starts_with(text)) {
        return false;
    }
    m_location += text.size();
    return true;
}

bool LineScanner::atWordCharacter() const {
    if (atEnd()) {
        return false;
    }
    return !charclass::isWhitespaceOrPunctuation(utf8::decode(m_line, m_location).codePoint);
}

} // namespace quillery
