#pragma once

#include <functional>
#include <string_view>

namespace quillery {

// The engine's fixed diagnostic lines ("Bad diff.", "Removing node...", ...). They go to standard
// output unless a sink is installed; tests and the command-line tool redirect them. This sink is
// the core's only process-wide state.
namespace diagnostics {

using Sink = std::function<void(std::string_view line)>;

// Writes one line (the text without its line feed) to the current sink.
void writeLine(std::string_view line);
// Installs a sink, or restores standard output with an empty one; returns the previous sink.
Sink setSink(Sink sink);

// Installs a sink for the lifetime of the object, then puts the previous one back.
class ScopedSink {
public:
    explicit ScopedSink(Sink sink);
    ~ScopedSink();
    ScopedSink(const ScopedSink&) = delete;
    ScopedSink& operator=(const ScopedSink&) = delete;

private:
    Sink m_previous;
};

} // namespace diagnostics
} // namespace quillery
