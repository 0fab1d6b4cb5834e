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

#include <QAction>
#include <QCloseEvent>
#include <QFileInfo>

#include <utility>

namespace quillery {

namespace {

QString qtPath(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

} // namespace

bool DocumentWindow::save() {
    if (!m_document->fileLocation() || m_packageGone)
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
    if (std::exchange(m_packageGone, false))
        m_messageBar->hide();
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
    if (m_document->fileLocation() && m_document->hasUnsavedChanges() && !m_packageGone)
        saveInPlace();
}

bool DocumentWindow::saveInPlace() {
    m_autosaveTimer.stop();
    if (auto error = package::saveInPlace(*m_document)) {
        if (error->domain == storage_errors::kCocoaDomain &&
            error->code == storage_errors::kNoSuchPackage) {
            packageWentAway();
            return false;
        }
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

void DocumentWindow::packageWentAway() {
    m_autosaveTimer.stop();
    m_liveMerge.reset();
    m_packageGone = true;
    delete m_followAction;
    m_followAction = nullptr;
    QList<QAction*> offers{m_actions.saveAs};
    const std::optional<std::filesystem::path> moved = package::movedLocation(*m_document);
    if (!moved) {
        m_messageBar->showMessage(
            tr("“%1” was moved, renamed or deleted while open, so your changes are no longer "
               "saved. Choose where to keep them with Save As…")
                .arg(displayName()),
            offers);
        return;
    }
    const QString movedName = QFileInfo(qtPath(*moved)).completeBaseName();
    m_followAction = new QAction(tr("Save in “%1”").arg(movedName), this);
    m_followAction->setObjectName(QStringLiteral("actionFollowMovedNotebook"));
    connect(m_followAction, &QAction::triggered, this,
            [this, location = *moved] { followPackage(location); });
    offers.prepend(m_followAction);
    m_messageBar->showMessage(tr("“%1” was renamed to “%2” while open, so your changes are no "
                                 "longer saved. Save them there, or choose another place with "
                                 "Save As…")
                                  .arg(displayName(), movedName),
                              offers);
}

void DocumentWindow::followPackage(const std::filesystem::path& location) {
    m_document->setFileLocation(location);
    m_packageGone = false;
    m_messageBar->hide();
    m_controller.recentDocuments().note(qtPath(location));
    m_controller.rememberOpenNotebooks();
    startLiveMerge();
    updateTitle();
    updateActions();
    if (m_document->hasUnsavedChanges())
        saveInPlace();
}

bool DocumentWindow::mayClose() {
    // A notebook with a place on disk keeps the editor's text and saves without a question; an
    // untitled one asks first, so that Cancel leaves the editor open as it was.
    const bool untitled = !m_document->fileLocation();
    if (!untitled)
        finishEditing();
    if (!m_document->hasUnsavedChanges() && !(untitled && editorHoldsChange()))
        return true;
    if (!untitled && !m_packageGone && saveInPlace())
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
