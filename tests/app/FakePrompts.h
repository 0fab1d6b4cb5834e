#pragma once

#include "app/DocumentPrompts.h"

#include <QString>

#include <vector>

namespace quillery {

// Answers the document machinery's questions as a test sets them up, and records what was asked.
class FakePrompts : public DocumentPrompts {
public:
    struct Warning {
        QString text;
        QString details;
    };

    void warn(QWidget*, const QString& text, const QString& details) override {
        warnings.push_back({text, details});
    }
    SaveChoice askToSaveChanges(QWidget*, const QString& documentName) override {
        savePromptsFor.push_back(documentName);
        return saveChoice;
    }
    bool confirmRevert(QWidget*, const QString&) override {
        ++revertQuestions;
        return revertAnswer;
    }
    std::optional<std::filesystem::path> chooseDocumentToOpen(QWidget*,
                                                              const QString& folder) override {
        startFolders.push_back(folder);
        return documentToOpen;
    }
    std::optional<std::filesystem::path> chooseSaveLocation(QWidget*, const QString&,
                                                            const QString& folder) override {
        startFolders.push_back(folder);
        return saveLocation;
    }
    std::optional<std::filesystem::path> chooseOutlineToImport(QWidget*) override {
        return outlineToImport;
    }
    std::optional<ExportTarget> chooseExportLocation(QWidget*, const QString& name) override {
        exportNamesSuggested.push_back(name);
        return exportTarget;
    }

    std::vector<Warning> warnings;
    std::vector<QString> savePromptsFor;
    SaveChoice saveChoice = SaveChoice::Cancel;
    int revertQuestions = 0;
    bool revertAnswer = true;
    std::optional<std::filesystem::path> documentToOpen;
    std::optional<std::filesystem::path> saveLocation;
    std::optional<std::filesystem::path> outlineToImport;
    std::optional<ExportTarget> exportTarget;
    std::vector<QString> exportNamesSuggested;
    // Where each file dialog was asked to start.
    std::vector<QString> startFolders;
};

} // namespace quillery
