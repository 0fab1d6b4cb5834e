#include "base/Diagnostics.h"

#include <cstdio>
#include <utility>

namespace quillery::diagnostics {

namespace {

Sink& currentSink() {
    static Sink sink;
    return sink;
}

} // namespace

void writeLine(std::string_view line) {
    if (const Sink& sink = currentSink()) {
        sink(line);
        return;
    }
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    // Pipes and files are block-buffered; a line held back there is lost if the process dies.
    std::fflush(stdout);
}

Sink setSink(Sink sink) {
    return std::exchange(currentSink(), std::move(sink));
}

ScopedSink::ScopedSink(Sink sink)
    : m_previous(setSink(std::move(sink))) {
}

ScopedSink::~ScopedSink() {
    setSink(std::move(m_previous));
}

} // namespace quillery::diagnostics
