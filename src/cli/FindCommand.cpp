#include "cli/FindCommand.h"

#include "cli/Cli.h"
#include "cli/CommandArguments.h"
#include "cli/NotebookSession.h"
#include "document/SearchIndex.h"
#include "document/TextFolding.h"
#include "outline/TerminalText.h"
#include "storage/JsonWriter.h"

#include <algorithm>
#include <limits>
#include <ostream>

namespace quillery::cli {

namespace {

constexpr std::string_view kFindUsage =
    "Usage: quillery-cli find PACKAGE QUERY... [--deleted] [--format text|json] [--raw]\n"
    "\n"
    "Prints the notes that hold every word of the query, in any order, ignoring case and\n"
    "accents (\"resume\" finds \"Résumé\"), in the order of the tree. A word may be part of a\n"
    "longer one; the note's web address counts as its text.\n"
    "  --deleted   look among the deleted notes too\n"
    "  text (default): IDENTIFIER<TAB>path > to > note<TAB>first line, one note a line; the\n"
    "                  path of a deleted note starts with \"Deleted notes\"\n"
    "  json:           an array of {\"identifier\", \"path\": [first lines from the top],\n"
    "                  \"text\", \"deleted\"}\n"
    "On a terminal, control characters of notes in text are shown as \\x1b; --raw writes them\n"
    "as they are, as is always done to pipes and files.\n"
    "Exit status: 0 with matches, 1 with none or when the package cannot be opened, 2 on bad\n"
    "usage.\n";

constexpr std::string_view kDeletedNotes = "Deleted notes";

// The first lines from the top down to the note itself.
std::vector<std::string_view> pathOf(const SearchHit& hit) {
    std::vector<std::string_view> path = ancestorFirstLines(*hit.node);
    if (hit.deleted)
        path.insert(path.begin(), kDeletedNotes);
    path.push_back(firstLine(hit.node->text()));
    return path;
}

// Tabs inside a field would break the columns.
std::string field(std::string_view text, bool escape) {
    std::string out = escape ? terminal_text::shown(text) : std::string(text);
    std::replace(out.begin(), out.end(), '\t', ' ');
    return out;
}

void writeText(const std::vector<SearchHit>& hits, bool escape, std::ostream& out) {
    for (const SearchHit& hit : hits) {
        out << field(hit.node->identifier().toString(), escape) << '\t';
        const auto path = pathOf(hit);
        for (std::size_t i = 0; i < path.size(); ++i)
            out << (i ? " > " : "") << field(path[i], escape);
        out << '\t' << field(firstLine(hit.node->text()), escape) << '\n';
    }
}

void writeJson(const std::vector<SearchHit>& hits, std::ostream& out) {
    std::string json;
    JsonWriter writer(json);
    writer.beginArray();
    for (const SearchHit& hit : hits) {
        writer.beginObject();
        writer.key("identifier");
        writer.identifier(hit.node->identifier());
        writer.key("path");
        writer.beginArray();
        for (std::string_view line : pathOf(hit))
            writer.string(line);
        writer.endArray();
        writer.key("text");
        writer.string(hit.node->text());
        writer.key("deleted");
        writer.boolean(hit.deleted);
        writer.endObject();
        out << json;
        json.clear();
    }
    writer.endArray();
    out << json << '\n';
}

} // namespace

int runFindCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
                   bool outputIsTerminal) {
    CommandArguments parsed(arguments, {"--format"}, {"--deleted", "--raw"});
    if (parsed.wantsHelp()) {
        out << kFindUsage;
        return kSuccess;
    }
    std::optional<std::string> problem = parsed.error();
    const std::string format = parsed.value("--format").value_or("text");
    if (!problem && parsed.positional().empty())
        problem = "no PACKAGE given";
    if (!problem && parsed.positional().size() < 2)
        problem = "no QUERY given";
    if (!problem && format != "text" && format != "json")
        problem = "unknown format “" + format + "” (text or json)";
    std::string query;
    for (std::size_t i = 1; i < parsed.positional().size(); ++i)
        query += (i > 1 ? " " : "") + parsed.positional()[i];
    if (!problem && folding::queryWords(query).empty())
        problem = "the query has no words";
    if (problem) {
        err << "quillery-cli: " << terminal_text::shown(*problem) << "\n\n" << kFindUsage;
        return kUsageError;
    }

    NotebookSession session(err);
    if (!session.open(parsed.positional().front()))
        return kPackageFailure;
    SearchIndex index(session.document());
    index.waitUntilReady();
    const SearchResults results =
        index.find(query, parsed.flag("--deleted"), std::numeric_limits<std::size_t>::max());
    if (format == "json")
        writeJson(results.hits, out);
    else
        writeText(results.hits, outputIsTerminal && !parsed.flag("--raw"), out);
    return results.hits.empty() ? kNoMatches : kSuccess;
}

} // namespace quillery::cli
