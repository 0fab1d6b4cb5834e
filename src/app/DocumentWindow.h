#pragma once

#include "app/DocumentActions.h"
#include "document/Document.h"

#include <QMainWindow>
#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>

class QVBoxLayout;

namespace quillery {

class DocumentController;
class FindBar;
class NoteColumn;
class LiveMerge;
class MessageBar;
class ColumnScrollArea;
class ColumnRow;
class ClipboardCommands;
class NoteCommands;
class OutlineFileCommands;
class UndoManager;

// One open notebook: owns its document and undo history and shows the columns. Saves in place a
// moment after each change once the notebook has a location; an untitled notebook is saved only
// when the user says so, and closing it with changes asks first.
class DocumentWindow : public QMainWindow {
    Q_OBJECT

public:
    static constexpr int kAutosaveDelayMs = 1000;

    // untitledName names a notebook that has no location yet.
    DocumentWindow(DocumentController& controller, std::unique_ptr<Document> document,
                   QString untitledName, QWidget* parent = nullptr);
    ~DocumentWindow() override;

    Document& document() const { return *m_document; }
    UndoManager& undoManager() const { return *m_undoManager; }
    const DocumentActions& actions() const { return m_actions; }
    MessageBar* messageBar() const { return m_messageBar; }
    // Keeps the open notebook in step with other writers of its package; null while the
    // notebook has no location.
    LiveMerge* liveMerge() const { return m_liveMerge.get(); }
    // Null only while the columns are being replaced.
    ColumnRow* columnRow() const;
    // The column holding this window's keyboard focus; none while a panel is open.
    NoteColumn* focusedColumn() const;
    // The package's name without ".quillery", or the untitled name.
    QString displayName() const;

    // How long after a change the notebook saves itself (kAutosaveDelayMs unless changed).
    void setAutosaveDelay(std::chrono::milliseconds delay) { m_autosaveTimer.setInterval(delay); }

    // A new notebook that has never been saved and holds no record of any edit.
    bool isUntouchedAndUntitled() const;

    // Gets the notebook ready to close: an open note editor's text is kept as Done would keep
    // it, and the notebook is saved, or the user is asked. False when the user keeps the window;
    // once true, closing asks nothing more until keepOpen().
    bool prepareToClose();
    // A close prepared for (a quit) that did not happen: the next close asks again.
    void keepOpen() { m_readyToClose = false; }

    // Each returns whether the notebook is now saved; failures were shown to the user.
    bool save();
    bool saveAs();
    void revert();

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void connectActions();
    void attachDocument();
    void detachDocument();
    void showContent();
    void showColumns();
    // The columns built anew over a tree that replaced the old one, opening the same notes.
    void rebuildContent();
    // Follows the package on disk from now on (or stops, when the notebook has no location).
    void startLiveMerge();
    void documentChanged();
    // Undo or Redo, then the note the step changed selected, in view and with the keyboard.
    void stepThroughHistory(void (UndoManager::*step)());
    static QString undoRefusedText(const QString& actionName, UndoObstacle why);
    void showChangedNote(const DocumentUpdate& change);
    void updateTitle();
    void updateActions();
    void autosave();
    bool saveInPlace();
    // The package is no longer at the notebook's location: saving in place stops, and the
    // message bar offers Save As, and saving where the package went when it is found.
    void packageWentAway();
    void followPackage(const std::filesystem::path& location);
    bool mayClose();
    // Done in the note editor, when one is open.
    void finishEditing();
    // The note editor is open with text that differs from its note's.
    bool editorHoldsChange() const;
    void fillRecentMenu();
    bool sendToActiveColumn(void (NoteColumn::*command)());
    void updateClipboardActions();

    DocumentController& m_controller;
    std::unique_ptr<UndoManager> m_undoManager;
    std::unique_ptr<Document> m_document;
    Document::ObserverId m_observer = 0;
    // While an undo or redo runs: the last change it made.
    std::optional<DocumentUpdate>* m_historyChange = nullptr;
    // While an undo runs: why it was refused, if it was.
    std::optional<UndoObstacle> m_undoObstacle;
    QString m_untitledName;
    QVBoxLayout* m_contentLayout = nullptr;
    MessageBar* m_messageBar = nullptr;
    ColumnScrollArea* m_content = nullptr;
    FindBar* m_findBar = nullptr; // above the columns, in the central widget with them
    DocumentActions m_actions;
    std::unique_ptr<LiveMerge> m_liveMerge;
    NoteCommands* m_noteCommands = nullptr;
    ClipboardCommands* m_clipboardCommands = nullptr;
    OutlineFileCommands* m_outlineFileCommands = nullptr;
    QTimer m_autosaveTimer;
    // One warning per run of failing autosaves, not one per change.
    bool m_autosaveFailed = false;
    // Nothing is saved in place until the user chose where (see packageWentAway()).
    bool m_packageGone = false;
    QAction* m_followAction = nullptr;
    bool m_shownOnce = false;
    bool m_readyToClose = false;
};

} // namespace quillery
