#include "app/DocumentWindow.h"

#include "app/AppCommands.h"
#include "app/BackgroundRelease.h"
#include "app/ClipboardCommands.h"
#include "app/DocumentController.h"
#include "app/DocumentPrompts.h"
#include "app/FindBar.h"
#include "app/LiveMerge.h"
#include "app/MenuBarFocus.h"
#include "app/MessageBar.h"
#include "app/NoteCommands.h"
#include "app/OutlineFileCommands.h"
#include "columns/NoteColumn.h"
#include "document/UndoManager.h"
#include "navigation/ColumnRow.h"
#include "navigation/ColumnRowState.h"
#include "navigation/ColumnScrollArea.h"
#include "navigation/RevealNote.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QMenu>
#include <QMenuBar>
#include <QVBoxLayout>

#include <utility>

namespace quillery {

namespace {

QString qtPath(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

// A folder as people write it: the home folder as "~".
QString shownFolder(const QString& folder) {
    const QString home = QDir::homePath();
    if (folder == home)
        return QStringLiteral("~");
    if (folder.startsWith(home + QLatin1Char('/')))
        return QStringLiteral("~") + folder.mid(home.size());
    return folder;
}

} // namespace

DocumentWindow::DocumentWindow(DocumentController& controller, std::unique_ptr<Document> document,
                               QString untitledName, QWidget* parent)
    : QMainWindow(parent)
    , m_controller(controller)
    , m_undoManager(std::make_unique<UndoManager>())
    , m_document(std::move(document))
    , m_untitledName(std::move(untitledName))
    , m_actions(DocumentActions::create(*this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("DocumentWindow"));
    m_autosaveTimer.setSingleShot(true);
    m_autosaveTimer.setInterval(kAutosaveDelayMs);
    connect(&m_autosaveTimer, &QTimer::timeout, this, &DocumentWindow::autosave);
    connectActions();
    new MenuBarFocus(*menuBar());
    attachDocument();
    auto* central = new QWidget(this);
    m_contentLayout = new QVBoxLayout(central);
    m_contentLayout->setContentsMargins(0, 0, 0, 0);
    m_contentLayout->setSpacing(0);
    m_messageBar = new MessageBar(central);
    m_contentLayout->addWidget(m_messageBar);
    setCentralWidget(central);
    showContent();
    startLiveMerge();
    // Room for three columns: the opened note, its children and theirs.
    const int width = columnRow()->columnWidth();
    resize(width * 3 + 2, width * 9 / 4);
    updateTitle();
    updateActions();
}

// The columns observe the document, so they go first; the document then lets go of the undo
// history that is about to go too, and is freed in the background.
DocumentWindow::~DocumentWindow() {
    // The focus moves as the columns go; a half-destroyed window must not hear of it.
    disconnect(qApp, &QApplication::focusChanged, this, nullptr);
    m_liveMerge.reset();
    delete takeCentralWidget();
    m_content = nullptr;
    detachDocument();
    releaseInBackground(std::move(m_document));
}

ColumnRow* DocumentWindow::columnRow() const {
    return m_content ? m_content->columnRow() : nullptr;
}

QString DocumentWindow::displayName() const {
    const auto& location = m_document->fileLocation();
    return location ? QFileInfo(qtPath(*location)).completeBaseName() : m_untitledName;
}

bool DocumentWindow::isUntouchedAndUntitled() const {
    return !m_document->fileLocation() && m_document->diffs().empty() && !m_undoManager->canRedo();
}

void DocumentWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (!m_shownOnce) {
        m_shownOnce = true;
        // After the columns have appeared: the first column takes the keyboard.
        QTimer::singleShot(0, this, [this] { columnRow()->focusColumn(0); });
    }
}

void DocumentWindow::connectActions() {
    connect(m_actions.newDocument, &QAction::triggered, &m_controller,
            [this] { m_controller.newDocument(); });
    connect(m_actions.open, &QAction::triggered, this,
            [this] { m_controller.openWithDialog(this); });
    connect(m_actions.openRecent, &QMenu::aboutToShow, this, &DocumentWindow::fillRecentMenu);
    connect(m_actions.save, &QAction::triggered, this, &DocumentWindow::save);
    connect(m_actions.saveAs, &QAction::triggered, this, &DocumentWindow::saveAs);
    connect(m_actions.revert, &QAction::triggered, this, &DocumentWindow::revert);
    connect(m_actions.close, &QAction::triggered, this, &QWidget::close);
    connect(m_actions.quit, &QAction::triggered, &m_controller, &DocumentController::quit);
    connect(m_actions.undo, &QAction::triggered, this, [this] {
        if (m_undoManager->canUndo())
            stepThroughHistory(&UndoManager::undo);
    });
    connect(m_actions.redo, &QAction::triggered, this, [this] {
        if (m_undoManager->canRedo())
            stepThroughHistory(&UndoManager::redo);
    });
    m_clipboardCommands = new ClipboardCommands(*this, m_actions);
    connect(qApp, &QApplication::focusChanged, this, &DocumentWindow::updateClipboardActions);
    m_outlineFileCommands = new OutlineFileCommands(*this, m_actions, m_controller.prompts());
    connect(m_actions.find, &QAction::triggered, this, [this] { m_findBar->open(); });
    connect(m_actions.findNext, &QAction::triggered, this, [this] { m_findBar->chooseNext(); });
    connect(m_actions.findPrevious, &QAction::triggered, this,
            [this] { m_findBar->choosePrevious(); });
    connect(m_actions.addNote, &QAction::triggered, this, [this] {
        // With no column to take it, the app-level command's fallback applies: a new
        // notebook.
        if (!sendToActiveColumn(&NoteColumn::addNote)) {
            if (AppCommands* app = m_controller.appCommands())
                app->addNote();
        }
    });
    connect(m_actions.addNoteBeneath, &QAction::triggered, this,
            [this] { sendToActiveColumn(&NoteColumn::addNoteBeneath); });
    connect(m_actions.editNote, &QAction::triggered, this,
            [this] { sendToActiveColumn(&NoteColumn::editSelectedNote); });
    m_noteCommands = new NoteCommands(*this, m_actions);
    AppCommands* app = m_controller.appCommands();
    for (QAction* action : {m_actions.help, m_actions.sendFeedback, m_actions.followOnSocialNetwork,
                            m_actions.about}) {
        action->setEnabled(app != nullptr);
    }
    if (app) {
        connect(m_actions.help, &QAction::triggered, app, [this, app] { app->showHelp(this); });
        connect(m_actions.sendFeedback, &QAction::triggered, app,
                [this, app] { app->sendFeedback(this); });
        connect(m_actions.followOnSocialNetwork, &QAction::triggered, app,
                [this, app] { app->followOnSocialNetwork(this); });
        connect(m_actions.about, &QAction::triggered, app, [this, app] { app->showAbout(this); });
    }
}

void DocumentWindow::attachDocument() {
    m_document->setUndoManager(m_undoManager.get());
    m_undoManager->setChangeListener([this] { documentChanged(); });
    m_document->setUndoRefusedHandler([this](UndoObstacle why) { m_undoObstacle = why; });
    m_observer = m_document->addObserver([this](const DocumentUpdate& update) {
        if (update.type == NodeUpdateType::reloadedTree)
            rebuildContent();
        else if (m_historyChange)
            *m_historyChange = update;
        documentChanged();
    });
}

void DocumentWindow::stepThroughHistory(void (UndoManager::*step)()) {
    std::optional<DocumentUpdate> change;
    const QString undoName = QString::fromStdString(m_undoManager->undoActionName());
    m_historyChange = &change;
    m_undoObstacle.reset();
    (m_undoManager.get()->*step)();
    m_historyChange = nullptr;
    if (m_undoObstacle)
        m_messageBar->showMessage(undoRefusedText(undoName, *m_undoObstacle));
    if (change)
        showChangedNote(*change);
}

QString DocumentWindow::undoRefusedText(const QString& actionName, UndoObstacle why) {
    switch (why) {
    case UndoObstacle::noteGone:
        return tr("Couldn't undo “%1”: its note has since been removed on another computer or by "
                  "another program. Nothing was changed; older steps can still be undone.")
            .arg(actionName);
    case UndoObstacle::notesAddedBeneath:
        return tr("Couldn't undo “%1”: notes have since been added beneath that note on another "
                  "computer or by another program, and undoing would remove them too. Delete the "
                  "note instead if you don't want it.")
            .arg(actionName);
    case UndoObstacle::placeGone:
        return tr("Couldn't undo “%1”: the place the note came from has since been removed on "
                  "another computer or by another program. Move the note by hand if you want it "
                  "elsewhere.")
            .arg(actionName);
    }
    return {};
}

void DocumentWindow::showChangedNote(const DocumentUpdate& change) {
    ColumnRow& row = *columnRow();
    if (revealNote(row, *change.node))
        return;
    // The note is gone (an addition undone) or among the deleted notes: show the place it left,
    // the note that now stands there, or else its parent.
    const Identifier& parentIdentifier =
        change.oldParentIdentifier ? *change.oldParentIdentifier : change.node->parentIdentifier();
    const NodePtr parent = m_document->node(parentIdentifier);
    if (!parent)
        return;
    const auto& children = parent->children();
    if (!children.empty()) {
        const std::size_t index = std::min(change.oldChildIndex.value_or(0), children.size() - 1);
        if (revealNote(row, *children[index]))
            return;
    }
    if (parent == m_document->rootNode() || !revealNote(row, *parent))
        row.focusColumn(0);
}

void DocumentWindow::detachDocument() {
    m_undoManager->setChangeListener({});
    m_document->removeObserver(m_observer);
    m_document->setUndoManager(nullptr);
    m_document->setUndoRefusedHandler({});
}

void DocumentWindow::showContent() {
    // The find bar goes above the columns; it searches this document, so Revert replaces it too.
    m_findBar = new FindBar(*m_document);
    m_contentLayout->insertWidget(0, m_findBar);
    connect(m_findBar, &FindBar::noteChosen, this,
            [this](const NodePtr& note) { revealNote(*columnRow(), *note); });
    showColumns();
}

void DocumentWindow::showColumns() {
    m_content = new ColumnScrollArea(m_document.get());
    m_contentLayout->addWidget(m_content, 1);
    // In a window already on screen (after Revert) the columns appear at once.
    m_content->show();
    connect(columnRow(), &ColumnRow::panelShownChanged, this, &DocumentWindow::updateActions);
    connect(columnRow(), &ColumnRow::panelShownChanged, this, [this](bool shown) {
        if (m_liveMerge)
            m_liveMerge->setHeld(shown);
    });
}

void DocumentWindow::rebuildContent() {
    // The old columns still show the old nodes, and so still know which notes were open.
    const ColumnRowState where = ColumnRowState::capture(*m_content);
    // Deleting the columns moves the focus, and the focus handlers must not reach them meanwhile.
    delete std::exchange(m_content, nullptr);
    showColumns();
    where.restore(*m_content, *m_document);
}

void DocumentWindow::startLiveMerge() {
    m_liveMerge.reset();
    if (!m_document->fileLocation())
        return;
    m_liveMerge =
        std::make_unique<LiveMerge>(*m_document, m_controller.preferences(), m_controller.codec());
    connect(m_liveMerge.get(), &LiveMerge::journalDamaged, this, [this](QString reason) {
        if (reason.endsWith(QLatin1Char('.')))
            reason.chop(1);
        m_messageBar->showMessage(
            tr("Changes made elsewhere are not shown yet, as a journal could not be read (%1). "
               "They will show once it reads well again, for example when a sync tool has "
               "finished copying it.")
                .arg(reason));
    });
}

void DocumentWindow::documentChanged() {
    m_noteCommands->documentChanged();
    updateTitle();
    updateActions();
    if (m_document->fileLocation() && m_document->hasUnsavedChanges() && !m_packageGone)
        m_autosaveTimer.start();
}

void DocumentWindow::updateTitle() {
    setWindowTitle(displayName() + QStringLiteral("[*]"));
    setWindowModified(m_document->hasUnsavedChanges());
}

void DocumentWindow::updateActions() {
    // While a panel is open the columns are disabled, and the history must not move under it.
    const bool browsing = columnRow()->panel() == nullptr;
    const bool canUndo = browsing && m_undoManager->canUndo();
    const bool canRedo = browsing && m_undoManager->canRedo();
    const QString undoName = QString::fromStdString(m_undoManager->undoActionName());
    const QString redoName = QString::fromStdString(m_undoManager->redoActionName());
    m_actions.undo->setEnabled(canUndo);
    m_actions.undo->setText(canUndo && !undoName.isEmpty() ? tr("&Undo %1").arg(undoName)
                                                           : tr("&Undo"));
    m_actions.redo->setEnabled(canRedo);
    m_actions.redo->setText(canRedo && !redoName.isEmpty() ? tr("&Redo %1").arg(redoName)
                                                           : tr("&Redo"));
    m_actions.addNote->setEnabled(browsing);
    m_actions.addNoteBeneath->setEnabled(browsing);
    m_actions.editNote->setEnabled(browsing);
    for (QAction* action : {m_actions.find, m_actions.findNext, m_actions.findPrevious})
        action->setEnabled(browsing);
    m_noteCommands->setBrowsing(browsing);
    m_outlineFileCommands->setBrowsing(browsing);
    m_actions.revert->setEnabled(m_document->fileLocation().has_value());
    updateClipboardActions();
}

void DocumentWindow::updateClipboardActions() {
    m_clipboardCommands->updateActions(columnRow() && columnRow()->panel() == nullptr);
}

void DocumentWindow::fillRecentMenu() {
    QMenu* menu = m_actions.openRecent;
    menu->clear();
    // Each notebook's folder shows as its tooltip, and beside its name when the name repeats.
    menu->setToolTipsVisible(true);
    const QStringList paths = m_controller.recentDocuments().paths();
    QHash<QString, int> named;
    for (const QString& path : paths)
        ++named[QFileInfo(path).completeBaseName()];
    for (const QString& path : paths) {
        const QFileInfo info(path);
        QString text = info.completeBaseName();
        if (named.value(text) > 1)
            text +=
                QStringLiteral(" — ") + QDir::toNativeSeparators(shownFolder(info.absolutePath()));
        QAction* action = menu->addAction(text.replace(QLatin1Char('&'), QStringLiteral("&&")));
        action->setToolTip(path);
        action->setStatusTip(path);
        connect(action, &QAction::triggered, this, [this, path] {
            if (!m_controller.openDocument(path.toStdString(), this))
                m_controller.recentDocuments().remove(path);
        });
    }
    if (paths.isEmpty()) {
        menu->addAction(tr("No Recent Notebooks"))->setEnabled(false);
        return;
    }
    menu->addSeparator();
    connect(menu->addAction(tr("&Clear Menu")), &QAction::triggered, this,
            [this] { m_controller.recentDocuments().clear(); });
}

bool DocumentWindow::sendToActiveColumn(void (NoteColumn::*command)()) {
    NoteColumn* column = columnRow()->activeColumn();
    if (!column)
        return false;
    (column->*command)();
    return true;
}

NoteColumn* DocumentWindow::focusedColumn() const {
    // No columns between taking them down and showing new ones (Revert, closing).
    if (!m_content || columnRow()->panel())
        return nullptr;
    return NoteColumn::containing(focusWidget());
}

} // namespace quillery
