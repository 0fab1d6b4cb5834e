#include "app/DialogPrompts.h"

#include "app/PackageFileDialog.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>

namespace quillery {

void DialogPrompts::warn(QWidget* parent, const QString& text, const QString& details) {
    QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(), text,
                    QMessageBox::Ok, parent);
    box.setInformativeText(details);
    box.exec();
}

DocumentPrompts::SaveChoice DialogPrompts::askToSaveChanges(QWidget* parent,
                                                            const QString& documentName) {
    QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(),
                    tr("Save the changes to “%1” before closing?").arg(documentName),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, parent);
    box.setInformativeText(tr("If you don't save, your changes will be lost."));
    box.button(QMessageBox::Discard)->setText(tr("Close &Without Saving"));
    box.setDefaultButton(QMessageBox::Save);
    switch (box.exec()) {
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
    box.exec();
    return box.buttonRole(box.clickedButton()) == QMessageBox::DestructiveRole;
}

std::optional<std::filesystem::path> DialogPrompts::chooseDocumentToOpen(QWidget* parent) {
    PackageFileDialog dialog(parent, QFileDialog::AcceptOpen, startDirectory());
    const bool accepted = dialog.exec() == QDialog::Accepted;
    m_lastDirectory = dialog.directory().absolutePath();
    if (!accepted || !dialog.chosenPackage())
        return std::nullopt;
    m_lastDirectory =
        QFileInfo(QString::fromStdString(dialog.chosenPackage()->string())).absolutePath();
    return dialog.chosenPackage();
}

std::optional<std::filesystem::path>
DialogPrompts::chooseSaveLocation(QWidget* parent, const QString& suggestedName) {
    PackageFileDialog dialog(parent, QFileDialog::AcceptSave, startDirectory());
    dialog.selectFile(PackageFileDialog::withPackageSuffix(suggestedName));
    const bool accepted = dialog.exec() == QDialog::Accepted;
    m_lastDirectory = dialog.directory().absolutePath();
    if (!accepted)
        return std::nullopt;
    return dialog.chosenPackage();
}

QString DialogPrompts::startDirectory() const {
    if (!m_lastDirectory.isEmpty() && QFileInfo(m_lastDirectory).isDir())
        return m_lastDirectory;
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

} // namespace quillery
