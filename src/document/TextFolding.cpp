#include "document/TextFolding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace quillery::folding {

namespace {

constexpr UChar32 kReplacement = 0xFFFD;

// The folded form of one code point: every code point of the Basic Multilingual Plane is looked
// up in a table made once, since calling ICU per character would dominate building an index.
struct FoldedCodePoint {
    std::uint8_t length = 0;
    char bytes[15] = {};
};

FoldedCodePoint foldWithIcu(UChar32 codePoint) {
    UChar source[2];
    int32_t sourceLength = 0;
    U16_APPEND_UNSAFE(source, sourceLength, codePoint);
    UErrorCode status = U_ZERO_ERROR;
    UChar folded[8];
    int32_t foldedLength =
        u_strFoldCase(folded, 8, source, sourceLength, U_FOLD_CASE_DEFAULT, &status);
    UChar decomposed[32];
    const UNormalizer2* nfd = unorm2_getNFDInstance(&status);
    int32_t decomposedLength = unorm2_normalize(nfd, folded, foldedLength, decomposed, 32, &status);
    FoldedCodePoint result;
    if (U_FAILURE(status)) {
        decomposedLength = 0;
        U16_APPEND_UNSAFE(decomposed, decomposedLength, codePoint);
    }
    for (int32_t i = 0; i < decomposedLength;) {
        UChar32 c = 0;
        U16_NEXT_UNSAFE(decomposed, i, c);
        const auto type = static_cast<UCharCategory>(u_charType(c));
        if (type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK)
            continue;
        if (result.length + U8_LENGTH(c) > static_cast<int>(sizeof result.bytes))
            break;
        int32_t length = result.length;
        U8_APPEND_UNSAFE(result.bytes, length, c);
        result.length = static_cast<std::uint8_t>(length);
    }
    return result;
}

const std::array<FoldedCodePoint, 0x10000>& basicPlaneTable() {
    static std::array<FoldedCodePoint, 0x10000> table;
    static std::once_flag once;
    std::call_once(once, [] {
        for (UChar32 c = 0; c < 0x10000; ++c)
            table[static_cast<std::size_t>(c)] =
                U_IS_SURROGATE(c) ? foldWithIcu(kReplacement) : foldWithIcu(c);
        table[0] = FoldedCodePoint{1, {' '}};
    });
    return table;
}

FoldedCodePoint foldCodePoint(UChar32 codePoint) {
    if (codePoint < 0)
        codePoint = kReplacement;
    if (codePoint < 0x10000)
        return basicPlaneTable()[static_cast<std::size_t>(codePoint)];
    return foldWithIcu(codePoint);
}

constexpr std::array<char, 128> kAsciiFold = [] {
    std::array<char, 128> table{};
    for (int c = 0; c < 128; ++c)
        table[static_cast<std::size_t>(c)] = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    table[0] = ' ';
    return table;
}();

bool isAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

} // namespace

void appendFolded(std::string_view text, std::string& out) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const std::int64_t length = static_cast<std::int64_t>(text.size());
    std::int64_t i = 0;
    while (i < length) {
        // Runs of ASCII, the bulk of most notebooks, are folded by table.
        std::int64_t run = i;
        while (run < length && bytes[run] < 0x80)
            ++run;
        if (run > i) {
            std::size_t at = out.size();
            out.resize(at + static_cast<std::size_t>(run - i));
            for (std::int64_t k = i; k < run; ++k)
                out[at++] = kAsciiFold[bytes[k]];
            i = run;
            continue;
        }
        UChar32 c = 0;
        U8_NEXT(bytes, i, length, c);
        FoldedCodePoint folded = foldCodePoint(c);
        out.append(folded.bytes, folded.length);
    }
}

std::string fold(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    appendFolded(text, out);
    return out;
}

FoldedWithOffsets foldWithOffsets(std::string_view text) {
    FoldedWithOffsets result;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const std::int64_t length = static_cast<std::int64_t>(text.size());
    for (std::int64_t i = 0; i < length;) {
        const auto start = static_cast<std::size_t>(i);
        if (isAscii(text[start])) {
            result.text += kAsciiFold[bytes[i++]];
            result.sourceOffsets.push_back(start);
            continue;
        }
        UChar32 c = 0;
        U8_NEXT(bytes, i, length, c);
        FoldedCodePoint folded = foldCodePoint(c);
        result.text.append(folded.bytes, folded.length);
        result.sourceOffsets.insert(result.sourceOffsets.end(), folded.length, start);
    }
    result.sourceOffsets.push_back(text.size());
    return result;
}

std::vector<std::string> queryWords(std::string_view query) {
    std::vector<std::string> words;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(query.data());
    const std::int64_t length = static_cast<std::int64_t>(query.size());
    std::int64_t wordStart = 0;
    auto finishWord = [&](std::int64_t end) {
        if (end > wordStart) {
            std::string word = fold(query.substr(static_cast<std::size_t>(wordStart),
                                                 static_cast<std::size_t>(end - wordStart)));
            // A word of marks alone folds to nothing; a NUL folds to a space.
            std::erase(word, ' ');
            if (!word.empty())
                words.push_back(std::move(word));
        }
    };
    for (std::int64_t i = 0; i < length;) {
        const std::int64_t start = i;
        UChar32 c = 0;
        U8_NEXT(bytes, i, length, c);
        if (c >= 0 && u_isUWhiteSpace(c)) {
            finishWord(start);
            wordStart = i;
        }
    }
    finishWord(length);
    return words;
}

std::vector<ByteRange> matchRanges(std::string_view text, const std::vector<std::string>& words) {
    const FoldedWithOffsets folded = foldWithOffsets(text);
    const auto& offsets = folded.sourceOffsets;
    std::vector<ByteRange> ranges;
    for (const std::string& word : words) {
        for (std::size_t at = folded.text.find(word); at != std::string::npos;
             at = folded.text.find(word, at + 1)) {
            // The match ends after the whole character its last byte came from.
            std::size_t last = at + word.size() - 1;
            std::size_t next = last + 1;
            while (offsets[next] == offsets[last] && next + 1 < offsets.size())
                ++next;
            ranges.push_back(
                {offsets[at], offsets[next] > offsets[last] ? offsets[next] : text.size()});
        }
    }
    std::sort(ranges.begin(), ranges.end(),
              [](const ByteRange& a, const ByteRange& b) { return a.begin < b.begin; });
    std::vector<ByteRange> merged;
    for (const ByteRange& range : ranges) {
        if (!merged.empty() && range.begin <= merged.back().end)
            merged.back().end = std::max(merged.back().end, range.end);
        else
            merged.push_back(range);
    }
    return merged;
}

} // namespace quillery::folding
