#include "app/DialogPrompts.h"

#include "app/PackageFileDialog.h"
#include "columns/ExecDialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>

namespace quillery {

namespace {

// The export formats as the save dialog offers them, the first chosen unless the user picks
// another.
struct ExportFilter {
    const char* name;
    const char* extension;
    ExportFormat format;
};

constexpr ExportFilter kExportFilters[] = {
    {QT_TRANSLATE_NOOP("DialogPrompts", "OPML"), "opml", ExportFormat::opml},
    {QT_TRANSLATE_NOOP("DialogPrompts", "Markdown"), "md", ExportFormat::markdown},
    {QT_TRANSLATE_NOOP("DialogPrompts", "Web page"), "html", ExportFormat::html},
    {QT_TRANSLATE_NOOP("DialogPrompts", "Text"), "txt", ExportFormat::text},
    {QT_TRANSLATE_NOOP("DialogPrompts", "JSON"), "json", ExportFormat::json},
};

QString filterText(const ExportFilter& filter) {
    return QStringLiteral("%1 (*.%2)")
        .arg(QCoreApplication::translate("DialogPrompts", filter.name),
             QString::fromLatin1(filter.extension));
}

} // namespace

void DialogPrompts::warn(QWidget* parent, const QString& text, const QString& details) {
    QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(), text,
                    QMessageBox::Ok, parent);
    box.setInformativeText(details);
    // Names of files and addresses can be copied from it.
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    execDialog(box);
}

DocumentPrompts::SaveChoice DialogPrompts::askToSaveChanges(QWidget* parent,
                                                            const QString& documentName) {
    QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(),
                    tr("Save the changes to “%1” before closing?").arg(documentName),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, parent);
    box.setInformativeText(tr("If you don't save, your changes will be lost."));
    box.button(QMessageBox::Discard)->setText(tr("Close &Without Saving"));
    box.setDefaultButton(QMessageBox::Save);
    switch (execDialog(box)) {
    case QMessageBox::Save:
        return SaveChoice::Save;
    case QMessageBox::Discard:
        return SaveChoice::Discard;
    default:
        return SaveChoice::Cancel;
    }
}

bool DialogPrompts::confirmRevert(QWidget* parent, const QString& documentName) {
    QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(),
                    tr("Revert “%1” to the last saved version?").arg(documentName),
                    QMessageBox::Cancel, parent);
    box.setInformativeText(tr("Changes made since then will be lost, and can't be undone."));
    box.addButton(tr("&Revert"), QMessageBox::DestructiveRole);
    box.setDefaultButton(QMessageBox::Cancel);
    execDialog(box);
    return box.buttonRole(box.clickedButton()) == QMessageBox::DestructiveRole;
}

std::optional<std::filesystem::path> DialogPrompts::chooseDocumentToOpen(QWidget* parent,
                                                                         const QString& folder) {
    PackageFileDialog dialog(parent, QFileDialog::AcceptOpen, startDirectory(folder));
    const bool accepted = execDialog(dialog) == QDialog::Accepted;
    m_lastDirectory = dialog.directory().absolutePath();
    if (!accepted || !dialog.chosenPackage())
        return std::nullopt;
    m_lastDirectory =
        QFileInfo(QString::fromStdString(dialog.chosenPackage()->string())).absolutePath();
    return dialog.chosenPackage();
}

std::optional<std::filesystem::path> DialogPrompts::chooseSaveLocation(QWidget* parent,
                                                                       const QString& suggestedName,
                                                                       const QString& folder) {
    PackageFileDialog dialog(parent, QFileDialog::AcceptSave, startDirectory(folder));
    dialog.selectFile(PackageFileDialog::withPackageSuffix(suggestedName));
    const bool accepted = execDialog(dialog) == QDialog::Accepted;
    m_lastDirectory = dialog.directory().absolutePath();
    if (!accepted)
        return std::nullopt;
    return dialog.chosenPackage();
}

std::optional<std::filesystem::path> DialogPrompts::chooseOutlineToImport(QWidget* parent) {
    QFileDialog dialog(parent, tr("Import"), startDirectory(QString()));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilters({tr("Outlines (*.opml *.xml *.md *.markdown *.txt *.text)"),
                           tr("OPML (*.opml *.xml)"), tr("Markdown (*.md *.markdown)"),
                           tr("Text (*.txt *.text)"), tr("All files (*)")});
    const bool accepted = execDialog(dialog) == QDialog::Accepted;
    m_lastDirectory = dialog.directory().absolutePath();
    if (!accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return std::filesystem::path(dialog.selectedFiles().first().toStdString());
}

std::optional<DocumentPrompts::ExportTarget>
DialogPrompts::chooseExportLocation(QWidget* parent, const QString& suggestedName) {
    QFileDialog dialog(parent, tr("Export"), startDirectory(QString()));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    QStringList filters;
    for (const ExportFilter& filter : kExportFilters)
        filters << filterText(filter);
    dialog.setNameFilters(filters);
    dialog.setDefaultSuffix(QString::fromLatin1(kExportFilters[0].extension));
    QObject::connect(
        &dialog, &QFileDialog::filterSelected, &dialog, [&dialog, filters](const QString& name) {
            const auto index = static_cast<std::size_t>(filters.indexOf(name));
            if (index < std::size(kExportFilters))
                dialog.setDefaultSuffix(QString::fromLatin1(kExportFilters[index].extension));
        });
    dialog.selectFile(suggestedName);
    const bool accepted = execDialog(dialog) == QDialog::Accepted;
    m_lastDirectory = dialog.directory().absolutePath();
    if (!accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    const auto index = static_cast<std::size_t>(filters.indexOf(dialog.selectedNameFilter()));
    const ExportFilter& filter = kExportFilters[index < std::size(kExportFilters) ? index : 0];
    QString file = dialog.selectedFiles().first();
    // A desktop's own dialog may leave the extension off.
    if (QFileInfo(file).suffix().isEmpty())
        file += QLatin1Char('.') + QString::fromLatin1(filter.extension);
    return ExportTarget{file.toStdString(), filter.format};
}

QString DialogPrompts::startDirectory(const QString& folder) const {
    for (const QString& candidate : {folder, m_lastDirectory}) {
        if (!candidate.isEmpty() && QFileInfo(candidate).isDir())
            return candidate;
    }
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

} // namespace quillery
