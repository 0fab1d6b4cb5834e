#include "app/PackageFileDialog.h"

#include "QtPrinters.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quillery {
namespace {

// The dialog's choices are driven here through its own selection and accept(), as its buttons
// and double-clicks do.
class PackageFileDialogTest : public ::testing::Test {
protected:
    PackageFileDialogTest() {
        QDir(m_directory.path()).mkpath(QStringLiteral("Trip.quillery"));
        QDir(m_directory.path()).mkpath(QStringLiteral("Folder"));
    }

    QString path(const QString& name) const { return m_directory.filePath(name); }
    static std::filesystem::path fsPath(const QString& path) {
        return std::filesystem::path(QDir::cleanPath(path).toStdString());
    }

    QTemporaryDir m_directory;
};

TEST_F(PackageFileDialogTest, OpenChoosesAPackage) {
    PackageFileDialog dialog(nullptr, QFileDialog::AcceptOpen, m_directory.path());
    dialog.selectFile(path(QStringLiteral("Trip.quillery")));
    dialog.accept();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.chosenPackage(), fsPath(path(QStringLiteral("Trip.quillery"))));
}

TEST_F(PackageFileDialogTest, OpenGoesIntoAnOrdinaryFolderInsteadOfChoosingIt) {
    PackageFileDialog dialog(nullptr, QFileDialog::AcceptOpen, m_directory.path());
    dialog.selectFile(path(QStringLiteral("Folder")));
    dialog.accept();
    EXPECT_NE(dialog.result(), QDialog::Accepted);
    EXPECT_FALSE(dialog.chosenPackage().has_value());
    EXPECT_EQ(QDir::cleanPath(dialog.directory().absolutePath()), path(QStringLiteral("Folder")));
}

TEST_F(PackageFileDialogTest, EnteringAPackageWhileOpeningChoosesIt) {
    PackageFileDialog dialog(nullptr, QFileDialog::AcceptOpen, m_directory.path());
    emit dialog.directoryEntered(path(QStringLiteral("Trip.quillery")));
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.chosenPackage(), fsPath(path(QStringLiteral("Trip.quillery"))));
}

TEST_F(PackageFileDialogTest, SaveAppendsTheSuffixToANewName) {
    PackageFileDialog dialog(nullptr, QFileDialog::AcceptSave, m_directory.path());
    dialog.selectFile(QStringLiteral("Recipes"));
    dialog.accept();
    EXPECT_EQ(dialog.chosenPackage(), fsPath(path(QStringLiteral("Recipes.quillery"))));
}

} // namespace
} // namespace quillery
