#include "app/OutlineFileCommands.h"

#include "app/DocumentActions.h"
#include "app/DocumentPrompts.h"
#include "app/DocumentWindow.h"
#include "columns/NoteColumn.h"
#include "document/Document.h"
#include "navigation/ColumnRow.h"
#include "outline/HtmlPictureFolder.h"
#include "outline/OutlineExport.h"
#include "outline/OutlineImport.h"
#include "outline/OutlineInsertion.h"

#include <QAction>

#include <fstream>

namespace quillery {

namespace {

QString fileName(const std::filesystem::path& file) {
    return QString::fromStdString(file.filename().string());
}

// The note's first line, as a name for files and pages.
std::string firstLine(const NotebookNode& note) {
    return std::string(note.text().substr(0, note.text().find('\n')));
}

// Writes the export to a file beside the target and renames it over the target, so a failed
// export leaves what was there. Gives why it failed (empty when the writing failed), or nothing.
std::optional<std::string> writeExport(const Document& document, const NotebookNode* note,
                                       const DocumentPrompts::ExportTarget& target,
                                       ExportOptions options) {
    std::filesystem::path partial = target.file;
    partial.replace_filename("." + target.file.filename().string() + ".part");
    if (target.format == ExportFormat::html)
        options.pictureSource = HtmlPictureFolder(target.file);
    std::ofstream out(partial, std::ios::binary | std::ios::trunc);
    if (out)
        exportNotes(document, note, target.format, options, out);
    out.close();
    std::error_code error;
    if (out)
        std::filesystem::rename(partial, target.file, error);
    if (!out || error) {
        std::filesystem::remove(partial, error);
        return out ? error.message() : std::string();
    }
    return std::nullopt;
}

} // namespace

OutlineFileCommands::OutlineFileCommands(DocumentWindow& window, const DocumentActions& actions,
                                         DocumentPrompts& prompts)
    : QObject(&window)
    , m_window(window)
    , m_actions(actions)
    , m_prompts(prompts) {
    connect(actions.importOutline, &QAction::triggered, this, &OutlineFileCommands::importOutline);
    connect(actions.exportNote, &QAction::triggered, this, &OutlineFileCommands::exportNote);
    connect(actions.exportNotebook, &QAction::triggered, this,
            &OutlineFileCommands::exportNotebook);
}

void OutlineFileCommands::setBrowsing(bool browsing) {
    for (QAction* action :
         {m_actions.importOutline, m_actions.exportNote, m_actions.exportNotebook})
        action->setEnabled(browsing);
}

void OutlineFileCommands::importOutline() {
    const auto file = m_prompts.chooseOutlineToImport(&m_window);
    if (!file)
        return;
    // Read whole before the notebook is touched, so a bad file adds nothing.
    const ParsedOutline parsed =
        readOutlineFile(*file, importFormatOfFile(*file).value_or(ImportFormat::text));
    if (parsed.error || parsed.outline.empty()) {
        const QString where = parsed.error && parsed.error->line > 0
                                  ? tr("%1, line %2").arg(fileName(*file)).arg(parsed.error->line)
                                  : fileName(*file);
        m_prompts.warn(&m_window, tr("Nothing was imported from “%1”.").arg(fileName(*file)),
                       parsed.error ? where + QStringLiteral(": ") +
                                          QString::fromStdString(parsed.error->message)
                                    : tr("%1 holds no notes.").arg(where));
        return;
    }
    Document& document = m_window.document();
    ColumnRow* row = m_window.columnRow();
    NoteColumn* column = row ? row->activeColumn() : nullptr;
    const NodePtr parent =
        column && column->parentNote() ? column->parentNote() : document.rootNode();
    const std::size_t at =
        column && column->parentNote() ? column->pasteIndex() : parent->children().size();
    const std::vector<Identifier> added =
        insertOutline(document, parsed.outline, *parent, at, "Import");
    if (column && !added.empty()) {
        if (const NodePtr first = document.node(added.front()))
            column->selectNote(*first);
    }
}

void OutlineFileCommands::exportNote() {
    ColumnRow* row = m_window.columnRow();
    NoteColumn* column = row ? row->activeColumn() : nullptr;
    if (const NodePtr note = column ? column->selectedNode() : nullptr)
        exportNotes(note.get(), QString::fromStdString(firstLine(*note)));
}

void OutlineFileCommands::exportNotebook() {
    exportNotes(nullptr, m_window.displayName());
}

void OutlineFileCommands::exportNotes(const NotebookNode* note, const QString& name) {
    // A name for a file, never a path.
    QString suggested = name.trimmed();
    suggested.replace(QLatin1Char('/'), QLatin1Char('-'));
    if (suggested.isEmpty() || suggested.startsWith(QLatin1Char('.')))
        suggested = m_window.displayName();
    const auto target = m_prompts.chooseExportLocation(&m_window, suggested);
    if (!target)
        return;
    ExportOptions options;
    options.title = note ? firstLine(*note) : m_window.displayName().toStdString();
    if (const auto problem = writeExport(m_window.document(), note, *target, options)) {
        m_prompts.warn(&m_window,
                       tr("The notes could not be exported to “%1”.").arg(fileName(target->file)),
                       problem->empty() ? tr("The file could not be written.")
                                        : QString::fromStdString(*problem));
    }
}

} // namespace quillery
