// Feeds arbitrary bytes to the journal reader. Whatever it accepts must be JSON to simdjson's
// full parser too, must replay into a document without harm, and must come back unchanged
// through the journal writer.
#include "base/Diagnostics.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "storage/JournalReader.h"
#include "storage/JournalWriter.h"

#include <cstddef>
#include <cstdint>
#include <simdjson.h>
#include <string>

namespace {

using namespace quillery;

class StringFile : public WritableFile {
public:
    std::error_code append(std::string_view bytes) override {
        text.append(bytes);
        return {};
    }
    std::error_code sync() override { return {}; }
    std::error_code close() override { return {}; }

    std::string text;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static bool quiet = [] {
        diagnostics::setSink([](std::string_view) {});
        return true;
    }();
    (void)quiet;
    std::string_view bytes(reinterpret_cast<const char*>(data), size);

    JournalReader reader;
    std::vector<DocumentDiff> diffs;
    if (reader.read(bytes, "fuzz.journal", diffs))
        return 0;

    simdjson::dom::parser checker;
    if (checker.parse(simdjson::padded_string(bytes)).error())
        __builtin_trap(); // accepted something that is not JSON

    StringFile file;
    auto written = JournalWriter().write(file, Identifier("fuzz"), TimePoint{}, diffs);
    if (written) {
        std::vector<DocumentDiff> again;
        if (reader.read(file.text, "rewritten.journal", again) || again.size() != diffs.size())
            __builtin_trap(); // what was read cannot be written back
        for (std::size_t i = 0; i < diffs.size(); ++i)
            if (!(again[i].payload == diffs[i].payload) ||
                !(again[i].identifier == diffs[i].identifier) ||
                again[i].timestamp != diffs[i].timestamp)
                __builtin_trap();
    }

    InMemoryPreferences preferences;
    Document document(preferences);
    document.loadData(diffs, diffs);
    return 0;
}
