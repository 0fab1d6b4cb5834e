#include "cli/NotebookCommands.h"

#include "cli/Cli.h"
#include "cli/CommandArguments.h"
#include "cli/NotebookSession.h"
#include "model/JournalMerge.h"
#include "outline/TerminalText.h"

#include <charconv>
#include <chrono>
#include <deque>
#include <iomanip>
#include <ostream>
#include <simdjson.h>
#include <vector>

namespace quillery::cli {

namespace {

constexpr std::string_view kNewUsage = "Usage: quillery-cli new PACKAGE\n"
                                       "\n"
                                       "Creates an empty notebook package (a NAME.quillery "
                                       "folder) with this installation's journal.\n";

constexpr std::string_view kAddUsage =
    "Usage: quillery-cli add PACKAGE --text TEXT [--parent IDENTIFIER] [--at INDEX]\n"
    "\n"
    "Adds a note as this installation and saves the package in place. The note goes under the\n"
    "note IDENTIFIER (the top level when not given), at position INDEX among its children\n"
    "(0 is first; at the end when not given). Prints the new note's identifier.\n";

constexpr std::string_view kInfoUsage =
    "Usage: quillery-cli info [--raw] PACKAGE\n"
    "\n"
    "Prints the package's journals (client and number of records), the number of notes,\n"
    "deleted notes and pictures, and how long opening it took. On a terminal, control\n"
    "characters of journal names are shown as \\x1b; --raw writes them as they are, as is always\n"
    "done to pipes and files.\n";

// Handles --help and bad usage; gives the single PACKAGE argument, or nothing when the caller
// should return `exitCode`.
std::optional<std::string> packageArgument(const CommandArguments& arguments,
                                           std::string_view usage, std::ostream& out,
                                           std::ostream& err, int& exitCode) {
    if (arguments.wantsHelp()) {
        out << usage;
        exitCode = kSuccess;
        return std::nullopt;
    }
    std::optional<std::string> problem = arguments.error();
    if (!problem && arguments.positional().size() != 1)
        problem = arguments.positional().empty() ? "no PACKAGE given" : "more than one PACKAGE";
    if (problem) {
        err << "quillery-cli: " << terminal_text::shown(*problem) << "\n\n" << usage;
        exitCode = kUsageError;
        return std::nullopt;
    }
    return arguments.positional().front();
}

// Every note below the node, counted without recursion so that any depth is safe. Reading a note
// and then its list of children are two waits on memory each; the walk goes level by level and
// asks for each note and each list well before it reads them, so a million notes cost waits that
// overlap rather than two million one after another.
std::size_t countNotes(const NotebookNode& node) {
    std::size_t count = 0;
    std::deque<const NotebookNode*> notes{&node};
    std::deque<const std::vector<NodePtr>*> lists;
    while (!notes.empty() || !lists.empty()) {
        if (!notes.empty()) {
            const std::vector<NodePtr>& children = notes.front()->children();
            notes.pop_front();
            if (!children.empty()) {
                count += children.size();
                __builtin_prefetch(children.data());
                lists.push_back(&children);
            }
        }
        if (!lists.empty()) {
            for (const NodePtr& child : *lists.front()) {
                __builtin_prefetch(child.get());
                notes.push_back(child.get());
            }
            lists.pop_front();
        }
    }
    return count;
}

} // namespace

int runNewCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
    CommandArguments parsed(arguments, {});
    int exitCode = kSuccess;
    auto location = packageArgument(parsed, kNewUsage, out, err, exitCode);
    if (!location)
        return exitCode;
    std::error_code error;
    if (std::filesystem::symlink_status(*location, error).type() !=
        std::filesystem::file_type::not_found) {
        err << "quillery-cli: “" << terminal_text::shown(*location) << "” already exists.\n";
        return kPackageFailure;
    }
    NotebookSession session(err);
    return session.saveTo(*location) ? kSuccess : kPackageFailure;
}

int runAddCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
    CommandArguments parsed(arguments, {"--text", "--parent", "--at"});
    int exitCode = kSuccess;
    auto location = packageArgument(parsed, kAddUsage, out, err, exitCode);
    if (!location)
        return exitCode;
    auto usageError = [&](const std::string& problem) {
        err << "quillery-cli: " << terminal_text::shown(problem) << "\n\n" << kAddUsage;
        return kUsageError;
    };
    auto text = parsed.value("--text");
    if (!text)
        return usageError("no --text given");
    if (!simdjson::validate_utf8(text->data(), text->size()))
        return usageError("the text is not valid UTF-8");
    std::optional<long> at;
    if (auto atText = parsed.value("--at")) {
        long value = -1;
        auto [end, error] = std::from_chars(atText->data(), atText->data() + atText->size(), value);
        if (error != std::errc() || end != atText->data() + atText->size() || value < 0)
            return usageError("--at needs a position: 0, 1, 2...");
        at = value;
    }

    NotebookSession session(err);
    if (!session.open(*location))
        return kPackageFailure;
    Document& document = session.document();
    NodePtr parent = document.rootNode();
    if (auto parentIdentifier = parsed.value("--parent")) {
        parent = document.node(Identifier(*parentIdentifier));
        if (!parent) {
            err << "quillery-cli: no note “" << terminal_text::shown(*parentIdentifier) << "” in “"
                << terminal_text::shown(*location) << "”.\n";
            return kUsageError;
        }
    }
    if (at && static_cast<std::size_t>(*at) > parent->children().size()) {
        err << "quillery-cli: --at " << *at << " is past the end; the parent has "
            << parent->children().size() << " notes.\n";
        return kUsageError;
    }
    auto note = NotebookNode::create(parent->identifier(), *text);
    document.userDidAdd(*note, *parent, at.value_or(-1));
    if (!session.saveInPlace())
        return kPackageFailure;
    // The save merged what other writers added meanwhile; the note must still stand in the tree.
    if (!session.standsInTree(note->identifier())) {
        err << "quillery-cli: the note was saved but has no place in “"
            << terminal_text::shown(*location) << "”.\n";
        return kPackageFailure;
    }
    out << note->identifier().toString() << '\n';
    return kSuccess;
}

int runInfoCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
                   bool outputIsTerminal) {
    CommandArguments parsed(arguments, {}, {"--raw"});
    int exitCode = kSuccess;
    auto location = packageArgument(parsed, kInfoUsage, out, err, exitCode);
    if (!location)
        return exitCode;
    NotebookSession session(err);
    package::PackageSummary summary;
    auto start = std::chrono::steady_clock::now();
    if (!session.open(*location, &summary))
        return kPackageFailure;
    std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;

    const Document& document = session.document();
    std::string own = journalFileName(document.clientIdentifier());
    const bool escape = outputIsTerminal && !parsed.flag("--raw");
    out << "Journals: " << summary.journals.size() << '\n';
    for (const auto& journal : summary.journals) {
        std::string client = journal.fileName;
        if (client.ends_with(kJournalMarker))
            client.resize(client.size() - kJournalMarker.size());
        out << "  " << (escape ? terminal_text::shown(client) : client) << ": "
            << journal.recordCount << (journal.recordCount == 1 ? " record" : " records")
            << (journal.fileName == own ? " (this installation)" : "") << '\n';
    }
    out << "Notes: " << countNotes(*document.rootNode()) << '\n';
    out << "Deleted notes: " << countNotes(*document.deletedRootNode()) << '\n';
    out << "Pictures: " << summary.pictureFiles << '\n';
    out << "Opened in: " << std::fixed << std::setprecision(1) << took.count() << " ms\n";
    return kSuccess;
}

} // namespace quillery::cli
