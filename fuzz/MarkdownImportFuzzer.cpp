// Arbitrary bytes read as a markdown outline. Whatever the input, the reader must finish with an
// error or an outline of well-formed UTF-8 whose depths step down from the top one level at a time,
// and that outline (unless huge) must come back from its own markdown export exactly.
#include "outline/OutlineExport.h"
#include "outline/OutlineImport.h"

#include <cstddef>
#include <cstdint>
#include <simdjson.h>
#include <sstream>
#include <string_view>

namespace {

constexpr std::size_t kMaxRoundTripNotes = 10000;

bool isSound(const quillery::Outline& outline) {
    std::size_t deepest = 0;
    for (const quillery::OutlineNote& note : outline.notes()) {
        if (note.depth > deepest || !simdjson::validate_utf8(note.text.data(), note.text.size()) ||
            (note.url && !simdjson::validate_utf8(note.url->data(), note.url->size())))
            return false;
        deepest = note.depth + 1;
    }
    return true;
}

std::string exported(const quillery::Outline& outline) {
    std::ostringstream out;
    quillery::exportOutline(outline, quillery::ExportFormat::markdown, {}, out);
    return out.str();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quillery;
    const ParsedOutline parsed = parseOutline(
        std::string_view(reinterpret_cast<const char*>(data), size), ImportFormat::markdown);
    if (parsed.error) {
        if (!parsed.outline.empty())
            __builtin_trap();
        return 0;
    }
    if (!isSound(parsed.outline))
        __builtin_trap();
    // The round trip of a huge outline (the megabyte inputs) would spend the time budget of one
    // input on work that small outlines check as well.
    if (parsed.outline.size() > kMaxRoundTripNotes)
        return 0;
    const std::string first = exported(parsed.outline);
    const ParsedOutline again = parseOutline(first, ImportFormat::markdown);
    if (again.error || exported(again.outline) != first)
        __builtin_trap();
    return 0;
}
