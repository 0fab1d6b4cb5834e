#pragma once

#include <QFileDialog>

#include <filesystem>
#include <optional>

namespace quillery {

// A file dialog in which NAME.quillery directories behave as documents.
//
// A notebook is a directory, and the desktop's native dialogs only know files or folders, so
// neither mode picks a package the way people expect: a file dialog cannot select it, a folder
// dialog opens it like any folder. This dialog is Qt's own (non-native) dialog in folder mode,
// showing folders only, with two changes that make packages act like files:
// - entering a package (double-click, Return, typing its path) chooses it instead of browsing it;
// - Open/Save on an ordinary folder goes into that folder instead of choosing it.
// For saving, the typed name gets ".quillery" appended, and an existing name is refused rather
// than replaced, so a Save As never overwrites another notebook. Both filter on "Quillery
// notebooks (*.quillery)", and the Save button is always called Save.
class PackageFileDialog : public QFileDialog {
    Q_OBJECT

public:
    PackageFileDialog(QWidget* parent, AcceptMode mode, const QString& startDirectory);

    // The package chosen once the dialog was accepted.
    const std::optional<std::filesystem::path>& chosenPackage() const { return m_chosen; }

    static bool isPackage(const QString& path);
    // The name with ".quillery" appended unless it already ends with it.
    static QString withPackageSuffix(const QString& path);

public slots:
    void accept() override;

private:
    void keepSaveLabel();
    void enteredDirectory(const QString& directory);
    void choose(const QString& path);

    std::optional<std::filesystem::path> m_chosen;
    bool m_choosing = false;
};

} // namespace quillery
