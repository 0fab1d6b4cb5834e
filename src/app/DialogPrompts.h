#pragma once

#include "app/DocumentPrompts.h"

#include <QCoreApplication>

namespace quillery {

// Asks with the desktop's message boxes and the package-aware file dialog. The keyboard goes back
// where it was once each closes.
class DialogPrompts : public DocumentPrompts {
    Q_DECLARE_TR_FUNCTIONS(DialogPrompts)

public:
    void warn(QWidget* parent, const QString& text, const QString& details) override;
    SaveChoice askToSaveChanges(QWidget* parent, const QString& documentName) override;
    bool confirmRevert(QWidget* parent, const QString& documentName) override;
    std::optional<std::filesystem::path> chooseDocumentToOpen(QWidget* parent,
                                                              const QString& folder) override;
    std::optional<std::filesystem::path> chooseSaveLocation(QWidget* parent,
                                                            const QString& suggestedName,
                                                            const QString& folder) override;
    std::optional<std::filesystem::path> chooseOutlineToImport(QWidget* parent) override;
    std::optional<ExportTarget> chooseExportLocation(QWidget* parent,
                                                     const QString& suggestedName) override;

private:
    QString startDirectory(const QString& folder) const;

    // Where the last dialog ended, so the next one starts there.
    QString m_lastDirectory;
};

} // namespace quillery
