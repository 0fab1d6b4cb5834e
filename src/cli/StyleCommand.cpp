#include "cli/StyleCommand.h"

#include "markdown/MarkdownStyler.h"
#include "storage/JsonString.h"

#include <istream>
#include <iterator>
#include <ostream>
#include <string_view>

namespace quillery::cli {

namespace {

constexpr std::string_view kUsage =
    "Usage: quillery-cli style < NOTE.txt\n"
    "\n"
    "Reads a note's text from standard input and prints its styled runs as a JSON array, in\n"
    "order. A text run is {\"text\": ..., \"line\": \"h1\"...\"h6\" or \"body\", \"style\":\n"
    "\"none\", \"italic\", \"bold\", \"code\", \"link\" or \"list\" (a list item's bullet or\n"
    "number)}, with \"link\": ... when it carries a target; a line terminator is {\"newline\": "
    "true}. Bytes that are not UTF-8 read as U+FFFD.\n"
    "\n"
    "Options:\n"
    "  -h, --help  show this text\n";

std::string_view lineTypeName(LineType type) {
    switch (type) {
    case LineType::h1:
        return "h1";
    case LineType::h2:
        return "h2";
    case LineType::h3:
        return "h3";
    case LineType::h4:
        return "h4";
    case LineType::h5:
        return "h5";
    case LineType::h6:
        return "h6";
    case LineType::body:
        break;
    }
    return "body";
}

std::string_view styleName(LineStyle style) {
    switch (style) {
    case LineStyle::italic:
        return "italic";
    case LineStyle::bold:
        return "bold";
    case LineStyle::code:
        return "code";
    case LineStyle::link:
        return "link";
    case LineStyle::listMarker:
        return "list";
    case LineStyle::none:
        break;
    }
    return "none";
}

void writeJsonString(std::ostream& out, std::string_view text) {
    std::string json;
    appendJsonString(json, text);
    out << json;
}

void writeRun(std::ostream& out, const StyledRun& run) {
    if (run.isLineTerminator) {
        out << "{\"newline\": true}";
        return;
    }
    out << "{\"text\": ";
    writeJsonString(out, run.text);
    out << ", \"line\": \"" << lineTypeName(run.lineType) << "\", \"style\": \""
        << styleName(run.style) << '"';
    if (run.link) {
        out << ", \"link\": ";
        writeJsonString(out, *run.link);
    }
    out << '}';
}

} // namespace

int runStyleCommand(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
                    std::ostream& err) {
    for (const std::string& argument : arguments) {
        if (argument == "-h" || argument == "--help") {
            out << kUsage;
            return 0;
        }
    }
    if (!arguments.empty()) {
        err << "quillery-cli style: unknown argument '" << arguments.front() << "'\n" << kUsage;
        return 2;
    }

    const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (in.bad()) {
        err << "quillery-cli style: could not read standard input\n";
        return 1;
    }

    MarkdownStyler styler(text);
    const std::vector<StyledRun> runs = styler.attributedString();
    out << "[\n";
    for (std::size_t i = 0; i < runs.size(); ++i) {
        out << "  ";
        writeRun(out, runs[i]);
        out << (i + 1 < runs.size() ? ",\n" : "\n");
    }
    out << "]\n";
    return out ? 0 : 1;
}

} // namespace quillery::cli
