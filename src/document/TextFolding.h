#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quillery::folding {

// Text as search compares it: case folded (full folding, so "ß" is "ss"), canonically
// decomposed, with nonspacing and enclosing marks removed ("Résumé" is "resume"). Bytes that are
// not well-formed UTF-8 read as U+FFFD. NUL reads as a space, so folded text never holds one.
// Safe to call from any thread.
std::string fold(std::string_view text);
void appendFolded(std::string_view text, std::string& out);

// The folded text with, for each of its bytes, the offset in the original text of the character
// it came from (plus one past the end), so that a match can be shown in the original.
struct FoldedWithOffsets {
    std::string text;
    std::vector<std::size_t> sourceOffsets; // text.size() + 1 entries
};
FoldedWithOffsets foldWithOffsets(std::string_view text);

// The folded words of a query: split at white space (any Unicode white space), empty words
// dropped.
std::vector<std::string> queryWords(std::string_view query);

// Where the folded words occur in the original text, as byte ranges [begin, end) sorted by
// begin and merged where they overlap.
struct ByteRange {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool operator==(const ByteRange&) const = default;
};
std::vector<ByteRange> matchRanges(std::string_view text, const std::vector<std::string>& words);

} // namespace quillery::folding
