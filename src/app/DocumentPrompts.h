#pragma once

#include "outline/OutlineExport.h"

#include <QString>

#include <filesystem>
#include <optional>

class QWidget;

namespace quillery {

// Every question and warning the document machinery puts to the user. The app asks with dialogs
// (DialogPrompts); tests answer with a fake, so no modal dialog ever blocks them.
class DocumentPrompts {
public:
    enum class SaveChoice { Save, Discard, Cancel };

    virtual ~DocumentPrompts() = default;

    virtual void warn(QWidget* parent, const QString& text, const QString& details) = 0;
    // Asked before a changed notebook that has no location (or could not be saved) closes.
    virtual SaveChoice askToSaveChanges(QWidget* parent, const QString& documentName) = 0;
    virtual bool confirmRevert(QWidget* parent, const QString& documentName) = 0;
    // A notebook package to open, or nothing when the user cancelled. The dialog starts in the
    // folder given (where the last notebook opened lies), or where it was last if none is.
    virtual std::optional<std::filesystem::path> chooseDocumentToOpen(QWidget* parent,
                                                                      const QString& folder) = 0;
    // A new package location ending in ".quillery", or nothing when the user cancelled; the
    // dialog starts in the folder as above.
    virtual std::optional<std::filesystem::path>
    chooseSaveLocation(QWidget* parent, const QString& suggestedName, const QString& folder) = 0;
    // An outline file to import (OPML, markdown or indented text), or nothing when the user
    // cancelled.
    virtual std::optional<std::filesystem::path> chooseOutlineToImport(QWidget* parent) = 0;
    // The file to export to and its format (the dialog's filter chooses it), or nothing when the
    // user cancelled. The suggested name has no extension.
    struct ExportTarget {
        std::filesystem::path file;
        ExportFormat format = ExportFormat::opml;
    };
    virtual std::optional<ExportTarget> chooseExportLocation(QWidget* parent,
                                                             const QString& suggestedName) = 0;
};

} // namespace quillery
