#include "cli/OutlineCommands.h"

#include "cli/Cli.h"
#include "cli/CommandArguments.h"
#include "cli/NotebookSession.h"
#include "outline/HtmlPictureFolder.h"
#include "outline/OutlineExport.h"
#include "outline/OutlineImport.h"
#include "outline/OutlineInsertion.h"
#include "outline/TerminalText.h"

#include <fstream>
#include <ostream>

namespace quillery::cli {

namespace {

constexpr std::string_view kExportUsage =
    "Usage: quillery-cli export [--format json|markdown|opml|html|text] [--pretty] [--raw]\n"
    "                           [--output FILE] PACKAGE [--note IDENTIFIER]\n"
    "\n"
    "Opens the package as the app does and writes its notes: all of them, or with --note that\n"
    "note and everything below it.\n"
    "  json (default): {\"root\": NODE, \"deleted\": NODE} (with --note: NODE), where NODE is\n"
    "                  {\"identifier\", \"text\", \"children\": [NODE...]} plus \"image\" and "
    "\"url\"\n"
    "                  when set; compact, or indented with --pretty.\n"
    "  markdown:       a nested list, two spaces per level; pictures are links to their files.\n"
    "  opml:           OPML 2.0, as other outliners import it.\n"
    "  html:           one page of nested lists; with --output the pictures are copied into a\n"
    "                  folder beside the page (FILE without its extension, then \"_files\").\n"
    "  text:           an indented outline, two spaces per level, \"- \" before every note.\n"
    "Only json holds the deleted notes. --output FILE writes to FILE instead of standard output.\n"
    "On a terminal, control characters of notes in markdown and text are shown as \\x1b;\n"
    "--raw writes them as they are, as is always done to files and pipes.\n";

constexpr std::string_view kImportUsage =
    "Usage: quillery-cli import PACKAGE FILE [--parent IDENTIFIER] [--format opml|markdown|text]\n"
    "\n"
    "Reads an outline from FILE and adds its notes as this installation after the children of\n"
    "the note IDENTIFIER (the top level when not given), then saves the package in place.\n"
    "The format comes from FILE's extension (.opml or .xml, .md or .markdown, .txt or .text)\n"
    "unless --format is given. A file with an error adds nothing; the message names its line.\n"
    "Prints how many notes were added.\n";

int usageError(std::ostream& err, std::string_view usage, const std::string& problem) {
    err << "quillery-cli: " << terminal_text::shown(problem) << "\n\n" << usage;
    return kUsageError;
}

} // namespace

int runExportCommand(const std::vector<std::string>& arguments, std::ostream& out,
                     std::ostream& err, bool outputIsTerminal) {
    CommandArguments parsed(arguments, {"--format", "--note", "--output"}, {"--pretty", "--raw"});
    if (parsed.wantsHelp()) {
        out << kExportUsage;
        return kSuccess;
    }
    if (parsed.error())
        return usageError(err, kExportUsage, *parsed.error());
    if (parsed.positional().size() != 1)
        return usageError(err, kExportUsage,
                          parsed.positional().empty() ? "no PACKAGE given"
                                                      : "more than one PACKAGE");
    const std::string formatName = parsed.value("--format").value_or("json");
    const std::optional<ExportFormat> format = exportFormatNamed(formatName);
    if (!format)
        return usageError(err, kExportUsage,
                          "unknown format “" + formatName +
                              "” (json, markdown, opml, html or text)");
    const std::string& location = parsed.positional().front();

    NotebookSession session(err);
    if (!session.open(location))
        return kPackageFailure;
    const Document& document = session.document();
    const NotebookNode* note = nullptr;
    if (auto identifier = parsed.value("--note")) {
        NodePtr found = document.node(Identifier(*identifier));
        if (!found)
            return usageError(err, kExportUsage,
                              "no note “" + *identifier + "” in “" + location + "”");
        note = found.get();
    }

    ExportOptions options;
    options.pretty = parsed.flag("--pretty");
    const std::optional<std::string> output = parsed.value("--output");
    options.escapeControls = outputIsTerminal && !output && !parsed.flag("--raw");
    options.title = note ? std::string(note->text().substr(0, note->text().find('\n')))
                         : std::filesystem::path(location).stem().string();
    if (!output) {
        exportNotes(document, note, *format, options, out);
        out.flush();
        return out ? kSuccess : kPackageFailure;
    }
    std::ofstream file(*output, std::ios::binary | std::ios::trunc);
    if (*format == ExportFormat::html)
        options.pictureSource = HtmlPictureFolder(*output);
    if (file)
        exportNotes(document, note, *format, options, file);
    file.close();
    if (!file) {
        err << "quillery-cli: could not write “" << terminal_text::shown(*output) << "”.\n";
        return kPackageFailure;
    }
    return kSuccess;
}

int runImportCommand(const std::vector<std::string>& arguments, std::ostream& out,
                     std::ostream& err) {
    CommandArguments parsed(arguments, {"--format", "--parent"});
    if (parsed.wantsHelp()) {
        out << kImportUsage;
        return kSuccess;
    }
    if (parsed.error())
        return usageError(err, kImportUsage, *parsed.error());
    if (parsed.positional().size() != 2)
        return usageError(err, kImportUsage,
                          parsed.positional().size() < 2 ? "give a PACKAGE and a FILE"
                                                         : "more than one FILE");
    const std::string& location = parsed.positional()[0];
    const std::filesystem::path file = parsed.positional()[1];
    std::optional<ImportFormat> format;
    if (auto name = parsed.value("--format")) {
        format = importFormatNamed(*name);
        if (!format)
            return usageError(err, kImportUsage,
                              "unknown format “" + *name + "” (opml, markdown or text)");
    } else {
        format = importFormatOfFile(file);
        if (!format)
            return usageError(err, kImportUsage,
                              "cannot tell the format of “" + file.string() +
                                  "” from its extension; give --format");
    }

    // The file is read whole before the package is touched, so a bad file changes nothing.
    const ParsedOutline outline = readOutlineFile(file, *format);
    if (outline.error) {
        err << "quillery-cli: " << terminal_text::shown(file.string());
        if (outline.error->line > 0)
            err << ':' << outline.error->line;
        err << ": " << terminal_text::shown(outline.error->message) << "\n";
        return kPackageFailure;
    }

    NotebookSession session(err);
    if (!session.open(location))
        return kPackageFailure;
    Document& document = session.document();
    NodePtr parent = document.rootNode();
    if (auto identifier = parsed.value("--parent")) {
        parent = document.node(Identifier(*identifier));
        if (!parent)
            return usageError(err, kImportUsage,
                              "no note “" + *identifier + "” in “" + location + "”");
    }
    const std::vector<Identifier> added =
        insertOutline(document, outline.outline, *parent, parent->children().size(), "Import");
    if (!session.saveInPlace())
        return kPackageFailure;
    // The save merged what other writers added meanwhile; the notes must still stand in the tree.
    for (const Identifier& identifier : added) {
        if (!session.standsInTree(identifier)) {
            err << "quillery-cli: the notes were saved but some have no place in “" << location
                << "”.\n";
            return kPackageFailure;
        }
    }
    const std::size_t count = outline.outline.size();
    out << "Imported " << count << (count == 1 ? " note.\n" : " notes.\n");
    return kSuccess;
}

} // namespace quillery::cli
