// Arbitrary bytes, well-formed UTF-8 or not, styled as a note's text. Whatever the input, the
// styler must finish, end with a line terminator, and hand out only well-formed UTF-8.
#include "markdown/MarkdownStyler.h"
#include "markdown/Utf8.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quillery;
    MarkdownStyler styler(std::string_view(reinterpret_cast<const char*>(data), size));
    const std::vector<StyledRun> runs = styler.attributedString();
    if (runs.empty() || !runs.back().isLineTerminator) {
        __builtin_trap();
    }
    for (const StyledRun& run : runs) {
        if (run.isLineTerminator) {
            continue;
        }
        if (run.text.empty() || !utf8::isValid(run.text) ||
            (run.link && !utf8::isValid(*run.link))) {
            __builtin_trap();
        }
        const RunPresentation shown = styler.presentation(run);
        if (shown.font.pointSize <= 0 || shown.link != run.link) {
            __builtin_trap();
        }
    }
    return 0;
}
