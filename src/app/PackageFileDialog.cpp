#include "app/PackageFileDialog.h"

#include "columns/ExecDialog.h"

#include <QAbstractItemView>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace quillery {

namespace {

const QString kSuffix = QStringLiteral(".quillery");

} // namespace

PackageFileDialog::PackageFileDialog(QWidget* parent, AcceptMode mode,
                                     const QString& startDirectory)
    : QFileDialog(parent) {
    setOption(QFileDialog::DontUseNativeDialog);
    setAcceptMode(mode);
    setDirectory(startDirectory);
    if (mode == AcceptOpen) {
        setWindowTitle(tr("Open Notebook"));
        setFileMode(QFileDialog::Directory);
        setLabelText(QFileDialog::Accept, tr("&Open"));
    } else {
        setWindowTitle(tr("Save Notebook"));
        setFileMode(QFileDialog::AnyFile);
        setLabelText(QFileDialog::FileName, tr("Notebook name:"));
        setLabelText(QFileDialog::Accept, tr("&Save"));
    }
    setOption(QFileDialog::ShowDirsOnly);
    setNameFilter(tr("Quillery notebooks (*.quillery)"));
    // Connected after the start directory is set: only the user's own moves count.
    connect(this, &QFileDialog::directoryEntered, this, &PackageFileDialog::enteredDirectory);
    if (mode == AcceptSave)
        keepSaveLabel();
}

void PackageFileDialog::keepSaveLabel() {
    // Qt's dialog relabels its Save button "Open" while a folder is selected or named. Here Save
    // goes into a plain folder too (see accept()), and keeps its name while it does. Connected
    // after the dialog's own handlers of the same signals, so it has the last word.
    const auto relabel = [this, label = labelText(QFileDialog::Accept)] {
        if (auto* buttons = findChild<QDialogButtonBox*>()) {
            for (QAbstractButton* button : buttons->buttons()) {
                if (buttons->buttonRole(button) == QDialogButtonBox::AcceptRole)
                    button->setText(label);
            }
        }
    };
    if (auto* name = findChild<QLineEdit*>(QStringLiteral("fileNameEdit")))
        connect(name, &QLineEdit::textChanged, this, relabel);
    for (auto* view : findChildren<QAbstractItemView*>()) {
        if (view->selectionModel())
            connect(view->selectionModel(), &QItemSelectionModel::selectionChanged, this, relabel);
    }
    connect(this, &QFileDialog::directoryEntered, this, relabel);
    connect(this, &QFileDialog::currentChanged, this, relabel);
}

bool PackageFileDialog::isPackage(const QString& path) {
    const QFileInfo info(path);
    return info.isDir() && info.fileName().endsWith(kSuffix);
}

QString PackageFileDialog::withPackageSuffix(const QString& path) {
    return path.endsWith(kSuffix) ? path : path + kSuffix;
}

void PackageFileDialog::accept() {
    const QStringList files = selectedFiles();
    if (files.isEmpty())
        return;
    QString path = QDir::cleanPath(files.first());
    if (acceptMode() == AcceptSave) {
        if (QFileInfo(path).isDir() && !isPackage(path)) {
            setDirectory(path);
            return;
        }
        path = withPackageSuffix(path);
        if (QFileInfo::exists(path)) {
            QMessageBox box(QMessageBox::Warning, tr("Save Notebook"),
                            tr("A notebook named “%1” already exists here.")
                                .arg(QFileInfo(path).completeBaseName()),
                            QMessageBox::Ok, this);
            box.setInformativeText(tr("Choose another name, or another folder."));
            execDialog(box);
            return;
        }
        choose(path);
        return;
    }
    if (isPackage(path))
        choose(path);
    else if (QFileInfo(path).isDir())
        setDirectory(path);
}

void PackageFileDialog::enteredDirectory(const QString& directory) {
    if (m_choosing || !isPackage(directory))
        return;
    if (acceptMode() == AcceptOpen) {
        choose(directory);
        return;
    }
    // Saving: stay beside the package and offer its name, which accept() then refuses to
    // overwrite with a clear message.
    const QFileInfo info(directory);
    setDirectory(info.absolutePath());
    selectFile(info.fileName());
}

void PackageFileDialog::choose(const QString& path) {
    m_choosing = true;
    m_chosen = std::filesystem::path(QDir::cleanPath(path).toStdString());
    QDialog::accept();
}

} // namespace quillery
