#include "app/PackageFileDialog.h"

#include "QtPrinters.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quillery {
namespace {

// The dialog in a folder holding the package Trip.quillery and the folder Folder, driven through
// its own selection and accept(), as its buttons and double-clicks do.
struct Choice {
    const char* name;
    QFileDialog::AcceptMode mode;
    const char* selected;
    const char* chosen; // null: the dialog stays open, in the folder selected
};

class PackageFileDialogTest : public ::testing::TestWithParam<Choice> {};

TEST_P(PackageFileDialogTest, ChoosesPackagesAndGoesIntoOtherFolders) {
    const Choice& test = GetParam();
    const QTemporaryDir directory;
    QDir(directory.path()).mkpath(QStringLiteral("Trip.quillery"));
    QDir(directory.path()).mkpath(QStringLiteral("Folder"));
    const auto at = [&](const char* name) {
        return directory.filePath(QString::fromUtf8(name));
    };
    PackageFileDialog dialog(nullptr, test.mode, directory.path());
    dialog.selectFile(at(test.selected));
    dialog.accept();
    EXPECT_EQ(dialog.result() == QDialog::Accepted, test.chosen != nullptr);
    if (test.chosen) {
        EXPECT_EQ(dialog.chosenPackage(), std::filesystem::path(at(test.chosen).toStdString()));
    } else {
        EXPECT_EQ(QDir::cleanPath(dialog.directory().absolutePath()), at(test.selected));
    }
}

INSTANTIATE_TEST_SUITE_P(Choices, PackageFileDialogTest,
                         ::testing::Values(Choice{"OpenAPackage", QFileDialog::AcceptOpen,
                                                  "Trip.quillery", "Trip.quillery"},
                                           Choice{"OpenGoesIntoAFolder", QFileDialog::AcceptOpen,
                                                  "Folder", nullptr},
                                           Choice{"SaveAddsTheSuffix", QFileDialog::AcceptSave,
                                                  "Recipes", "Recipes.quillery"}),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(PackageFileDialog, EnteringAPackageWhileOpeningChoosesIt) {
    const QTemporaryDir directory;
    QDir(directory.path()).mkpath(QStringLiteral("Trip.quillery"));
    const QString package = directory.filePath(QStringLiteral("Trip.quillery"));
    PackageFileDialog dialog(nullptr, QFileDialog::AcceptOpen, directory.path());
    emit dialog.directoryEntered(package);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.chosenPackage(), std::filesystem::path(package.toStdString()));
}

} // namespace
} // namespace quillery
