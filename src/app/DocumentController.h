#pragma once

#include "app/RecentDocuments.h"
#include "app/SessionState.h"
#include "storage/StorageError.h"

#include <QObject>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

class QWidget;

namespace quillery {

class Document;
class AppCommands;
class DocumentPrompts;
class DocumentWindow;
class PictureCodec;
class Preferences;

// Owns the open notebooks: one DocumentWindow each, which owns its document. Makes new
// notebooks, opens packages (at most one window per package), keeps the recent list and the
// session (which notebooks are open, where their windows are), and closes everything on quit,
// asking about unsaved changes window by window.
class DocumentController : public QObject {
    Q_OBJECT

public:
    // All three must outlive the controller.
    DocumentController(Preferences& preferences, const PictureCodec& codec,
                       DocumentPrompts& prompts, QObject* parent = nullptr);
    ~DocumentController() override;

    // A new untitled notebook in a new window, shown.
    DocumentWindow* newDocument();
    // The window of the package, opening it when it is not open yet. A package that cannot be
    // read shows a warning with the reason and opens nothing (null).
    DocumentWindow* openDocument(const std::filesystem::path& location,
                                 QWidget* dialogParent = nullptr);
    // File > Open, starting in the folder of the last notebook opened.
    void openWithDialog(QWidget* dialogParent);
    // The folder of the notebook opened last, or empty.
    QString lastNotebookFolder() const;
    // What a later start of the app asks for: each package given opens or comes forward; with
    // none, the last window opened comes forward (a new notebook when there is none).
    void openForAnotherStart(const QStringList& packages);
    // Opens the notebooks that were open when the app last ended, passing over those that are
    // gone and the one whose open ended the app last time (the first window then says so);
    // returns how many windows are open then.
    std::size_t restoreSession();
    // Closes every window once each is ready to (saved, or the user answered); when the user
    // keeps one open, returns false and closes none.
    bool closeAll();
    void quit();

    const std::vector<DocumentWindow*>& windows() const { return m_windows; }
    DocumentPrompts& prompts() const { return m_prompts; }
    Preferences& preferences() const { return m_preferences; }
    const PictureCodec& codec() const { return m_codec; }
    RecentDocuments& recentDocuments() { return m_recentDocuments; }
    SessionState& session() { return m_session; }
    // Records the notebooks of the windows shown now, but for the one closing, as those to bring
    // back at the next start.
    void rememberOpenNotebooks(const DocumentWindow* closing = nullptr);
    // Called by a window whose close goes ahead: keeps where it was, and whether to bring its
    // notebook back. Closing the last window ends the app, so its notebook comes back with the
    // rest; a window closed while others stay open is gone for good.
    void windowWillClose(const DocumentWindow& window);
    // The Help menu's commands; without them the menu is disabled. Set before any window.
    AppCommands* appCommands() const { return m_appCommands; }
    void setAppCommands(AppCommands* commands) { m_appCommands = commands; }

    struct ReadResult {
        std::unique_ptr<Document> document;
        std::optional<StorageError> error;
    };
    // A document filled from the package, or the reason it could not be read.
    ReadResult readDocument(const std::filesystem::path& location) const;
    std::unique_ptr<Document> makeDocument() const;

private:
    DocumentWindow* addWindow(std::unique_ptr<Document> document, const QString& untitledName);
    DocumentWindow* windowFor(const std::filesystem::path& location) const;
    // At the notebook's own place when one is kept, else at the size of the last window closed;
    // in either case wholly on the screen it opens on.
    void placeWindow(DocumentWindow& window) const;

    Preferences& m_preferences;
    const PictureCodec& m_codec;
    DocumentPrompts& m_prompts;
    RecentDocuments m_recentDocuments;
    SessionState m_session;
    bool m_quitting = false;
    // Shown in the message bar of the next window made.
    QString m_noticeForNextWindow;
    AppCommands* m_appCommands = nullptr;
    std::vector<DocumentWindow*> m_windows;
    int m_untitledCount = 0;
};

} // namespace quillery
