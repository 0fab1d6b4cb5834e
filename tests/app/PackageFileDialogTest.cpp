#include "app/PackageFileDialog.h"

#include "QtPrinters.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace quillery {
namespace {

// The dialog in a folder holding the package Trip.quillery and the folder Folder, driven through
// its own selection and accept(), as its buttons and double-clicks do, or by going into a folder.
struct Choice {
    const char* name;
    QFileDialog::AcceptMode mode;
    const char* selected;
    const char* chosen; // null: the dialog stays open, in the folder selected
    bool entered = false;
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
    if (test.entered) {
        emit dialog.directoryEntered(at(test.selected));
    } else {
        dialog.selectFile(at(test.selected));
        dialog.accept();
    }
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
                                                  "Recipes", "Recipes.quillery"},
                                           Choice{"OpenEntersAPackage", QFileDialog::AcceptOpen,
                                                  "Trip.quillery", "Trip.quillery", true}),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

// Both dialogs offer notebooks by name and still show the folders to go through; a Save button
// keeps its name whatever is selected.
TEST(PackageFileDialog, FiltersOnNotebooksShowsFoldersAndSaysSave) {
    const QTemporaryDir directory;
    QDir(directory.path()).mkpath(QStringLiteral("Trip.quillery"));
    QDir(directory.path()).mkpath(QStringLiteral("Folder"));
    for (const QFileDialog::AcceptMode mode : {QFileDialog::AcceptOpen, QFileDialog::AcceptSave}) {
        PackageFileDialog dialog(nullptr, mode, directory.path());
        dialog.show();
        auto* list = dialog.findChild<QListView*>(QStringLiteral("listView"));
        ASSERT_NE(list, nullptr);
        QStringList shown;
        EXPECT_TRUE(QTest::qWaitFor([&] {
            shown.clear();
            const QModelIndex root = list->rootIndex();
            for (int row = 0; row < list->model()->rowCount(root); ++row)
                shown << list->model()->index(row, 0, root).data().toString();
            shown.sort();
            return shown.size() == 2;
        }));
        EXPECT_EQ(shown, (QStringList{QStringLiteral("Folder"), QStringLiteral("Trip.quillery")}));
        if (mode == QFileDialog::AcceptOpen)
            continue;
        list->setCurrentIndex(list->model()->index(0, 0, list->rootIndex()));
        dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
            ->setText(QStringLiteral("Folder"));
        auto* buttons = dialog.findChild<QDialogButtonBox*>();
        for (QAbstractButton* button : buttons->buttons()) {
            if (buttons->buttonRole(button) == QDialogButtonBox::AcceptRole) {
                EXPECT_EQ(button->text(), QStringLiteral("&Save"));
            }
        }
    }
}

} // namespace
} // namespace quillery
