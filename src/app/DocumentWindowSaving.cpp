// The window's saving and closing: Save, Save As, Revert, autosave, and getting ready to close.
#include "app/DocumentController.h"
#include "app/DocumentPrompts.h"
#include "app/DocumentWindow.h"
#include "app/FindBar.h"
#include "app/LiveMerge.h"
#include "app/MessageBar.h"
#include "app/StorageErrorText.h"
#include "columns/NoteEditorPanel.h"
#include "document/UndoManager.h"
#include "navigation/ColumnRow.h"
#include "navigation/ColumnRowState.h"
#include "navigation/ColumnScrollArea.h"
#include "storage/NotebookPackage.h"

#include <QCloseEvent>
#include <QFileInfo>

namespace quillery {

namespace {

QString qtPath(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

} // namespace

bool DocumentWindow::save() {
    if (!m_document->fileLocation())
        return saveAs();
    return saveInPlace();
}

bool DocumentWindow::saveAs() {
    // Beside the notebook when it has a place, else where the last notebook opened lies.
    const auto& current = m_document->fileLocation();
    const QString folder =
        current ? QFileInfo(qtPath(*current)).absolutePath() : m_controller.lastNotebookFolder();
    const auto location = m_controller.prompts().chooseSaveLocation(this, displayName(), folder);
    if (!location)
        return false;
    m_autosaveTimer.stop();
    if (auto error = package::saveTo(*m_document, *location)) {
        m_controller.prompts().warn(
            this, tr("The notebook could not be saved as “%1”.").arg(qtPath(location->filename())),
            storageErrorDetails(*error, true));
        return false;
    }
    m_document->markSaved();
    m_autosaveFailed = false;
    m_controller.recentDocuments().note(qtPath(*m_document->fileLocation()));
    m_controller.rememberOpenNotebooks();
    startLiveMerge();
    updateTitle();
    updateActions();
    return true;
}

void DocumentWindow::revert() {
    const auto location = m_document->fileLocation();
    if (!location)
        return;
    if (m_document->hasUnsavedChanges() &&
        !m_controller.prompts().confirmRevert(this, displayName())) {
        return;
    }
    auto result = m_controller.readDocument(*location);
    if (!result.document) {
        m_controller.prompts().warn(
            this, tr("The notebook “%1” could not be read again.").arg(displayName()),
            result.error ? storageErrorDetails(*result.error, false) : QString());
        return;
    }
    m_autosaveTimer.stop();
    m_liveMerge.reset();
    m_messageBar->hide();
    const ColumnRowState where = ColumnRowState::capture(*m_content);
    delete m_content;
    m_content = nullptr;
    delete m_findBar;
    m_findBar = nullptr;
    detachDocument();
    m_undoManager->removeAllActions();
    m_document = std::move(result.document);
    attachDocument();
    showContent();
    startLiveMerge();
    columnRow()->focusColumn(0);
    where.restore(*m_content, *m_document);
    documentChanged();
}

bool DocumentWindow::prepareToClose() {
    m_readyToClose = m_readyToClose || mayClose();
    return m_readyToClose;
}

void DocumentWindow::closeEvent(QCloseEvent* event) {
    if (!prepareToClose()) {
        event->ignore();
        return;
    }
    m_autosaveTimer.stop();
    m_controller.windowWillClose(*this);
    event->accept();
}

void DocumentWindow::autosave() {
    if (m_document->fileLocation() && m_document->hasUnsavedChanges())
        saveInPlace();
}

bool DocumentWindow::saveInPlace() {
    m_autosaveTimer.stop();
    if (auto error = package::saveInPlace(*m_document)) {
        if (!m_autosaveFailed) {
            m_autosaveFailed = true;
            m_controller.prompts().warn(
                this, tr("The notebook “%1” could not be saved.").arg(displayName()),
                storageErrorDetails(*error, true));
        }
        return false;
    }
    m_autosaveFailed = false;
    m_document->markSaved();
    if (m_liveMerge)
        m_liveMerge->noteOwnSave();
    updateTitle();
    return true;
}

bool DocumentWindow::mayClose() {
    // A notebook with a place on disk keeps the editor's text and saves without a question; an
    // untitled one asks first, so that Cancel leaves the editor open as it was.
    const bool untitled = !m_document->fileLocation();
    if (!untitled)
        finishEditing();
    if (!m_document->hasUnsavedChanges() && !(untitled && editorHoldsChange()))
        return true;
    if (!untitled && saveInPlace())
        return true;
    switch (m_controller.prompts().askToSaveChanges(this, displayName())) {
    case DocumentPrompts::SaveChoice::Save:
        finishEditing();
        return saveAs();
    case DocumentPrompts::SaveChoice::Discard:
        return true;
    case DocumentPrompts::SaveChoice::Cancel:
        return false;
    }
    return false;
}

void DocumentWindow::finishEditing() {
    if (auto* editor = qobject_cast<NoteEditorPanel*>(columnRow()->panel()))
        editor->finish();
}

bool DocumentWindow::editorHoldsChange() const {
    const auto* editor = qobject_cast<NoteEditorPanel*>(columnRow()->panel());
    return editor && editor->note() && editor->text() != editor->note()->text();
}

} // namespace quillery
