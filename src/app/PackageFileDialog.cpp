#include "app/PackageFileDialog.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>

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
    }
    setOption(QFileDialog::ShowDirsOnly);
    // Connected after the start directory is set: only the user's own moves count.
    connect(this, &QFileDialog::directoryEntered, this, &PackageFileDialog::enteredDirectory);
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
            QMessageBox::warning(this, tr("Save Notebook"),
                                 tr("A notebook named “%1” already exists here. Choose another "
                                    "name.")
                                     .arg(QFileInfo(path).completeBaseName()));
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
