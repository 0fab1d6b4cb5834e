#include "app/DocumentActions.h"

#include "app/AppInfo.h"

#include <QAction>
#include <QCoreApplication>
#include <QIcon>
#include <QMainWindow>
#include <QMenuBar>

#include <utility>

namespace quillery {

namespace {

QAction* addAction(QMenu* menu, const QString& text, const QString& name,
                   const QKeySequence& shortcut = {}) {
    QAction* action = menu->addAction(text);
    action->setObjectName(name);
    action->setShortcut(shortcut);
    return action;
}

// Every binding the desktop defines for the key (Redo has two on most desktops). Some desktops
// define none for Save As or Quit; those get the keys most Linux applications use.
QAction* addAction(QMenu* menu, const QString& text, const QString& name,
                   QKeySequence::StandardKey key, const QKeySequence& fallback = {}) {
    QAction* action = addAction(menu, text, name);
    QList<QKeySequence> keys = QKeySequence::keyBindings(key);
    if (keys.isEmpty() && !fallback.isEmpty())
        keys.append(fallback);
    action->setShortcuts(keys);
    return action;
}

QString trMenu(const char* text) {
    return QCoreApplication::translate("DocumentActions", text);
}

} // namespace

DocumentActions DocumentActions::create(QMainWindow& window) {
    DocumentActions actions;
    QMenuBar* bar = window.menuBar();

    QMenu* file = bar->addMenu(trMenu("&File"));
    actions.newDocument =
        addAction(file, trMenu("&New Notebook"), QStringLiteral("actionNew"), QKeySequence::New);
    actions.open =
        addAction(file, trMenu("&Open…"), QStringLiteral("actionOpen"), QKeySequence::Open);
    actions.openRecent = file->addMenu(trMenu("Open &Recent"));
    actions.openRecent->setObjectName(QStringLiteral("menuOpenRecent"));
    file->addSeparator();
    actions.save =
        addAction(file, trMenu("&Save"), QStringLiteral("actionSave"), QKeySequence::Save);
    actions.saveAs =
        addAction(file, trMenu("Save &As…"), QStringLiteral("actionSaveAs"), QKeySequence::SaveAs,
                  QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
    actions.revert = addAction(file, trMenu("Re&vert to Saved"), QStringLiteral("actionRevert"));
    file->addSeparator();
    actions.importOutline =
        addAction(file, trMenu("&Import…"), QStringLiteral("actionImportOutline"));
    actions.exportNote =
        addAction(file, trMenu("&Export Note…"), QStringLiteral("actionExportNote"));
    actions.exportNotebook =
        addAction(file, trMenu("Export Note&book…"), QStringLiteral("actionExportNotebook"));
    file->addSeparator();
    actions.close =
        addAction(file, trMenu("&Close"), QStringLiteral("actionClose"), QKeySequence::Close);
    actions.quit = addAction(file, trMenu("&Quit"), QStringLiteral("actionQuit"),
                             QKeySequence::Quit, QKeySequence(Qt::CTRL | Qt::Key_Q));
    actions.quit->setMenuRole(QAction::QuitRole);

    QMenu* edit = bar->addMenu(trMenu("&Edit"));
    actions.undo =
        addAction(edit, trMenu("&Undo"), QStringLiteral("actionUndo"), QKeySequence::Undo);
    actions.redo =
        addAction(edit, trMenu("&Redo"), QStringLiteral("actionRedo"), QKeySequence::Redo);
    edit->addSeparator();
    actions.cut = addAction(edit, trMenu("Cu&t"), QStringLiteral("actionCut"), QKeySequence::Cut);
    actions.copy =
        addAction(edit, trMenu("&Copy"), QStringLiteral("actionCopy"), QKeySequence::Copy);
    actions.paste =
        addAction(edit, trMenu("&Paste"), QStringLiteral("actionPaste"), QKeySequence::Paste);
    edit->addSeparator();
    actions.find = addAction(edit, trMenu("&Find…"), QStringLiteral("actionFind"),
                             QKeySequence::Find, QKeySequence(Qt::CTRL | Qt::Key_F));
    // Both pairs of keys, whatever the desktop binds: F3 where Windows habits rule, Ctrl+G where
    // the Mac's do.
    actions.findNext = addAction(edit, trMenu("Find &Next"), QStringLiteral("actionFindNext"));
    actions.findNext->setShortcuts({QKeySequence(Qt::Key_F3), QKeySequence(Qt::CTRL | Qt::Key_G)});
    actions.findPrevious =
        addAction(edit, trMenu("Find Pre&vious"), QStringLiteral("actionFindPrevious"));
    actions.findPrevious->setShortcuts(
        {QKeySequence(Qt::SHIFT | Qt::Key_F3), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_G)});

    QMenu* view = bar->addMenu(trMenu("&View"));
    actions.deletedNotes =
        addAction(view, trMenu("&Deleted Notes"), QStringLiteral("actionDeletedNotes"),
                  QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_D));

    // Ctrl+N and Ctrl+P move within a focused column, and Return edits there, so the Note
    // commands use keys no column claims.
    QMenu* note = bar->addMenu(trMenu("&Note"));
    actions.addNote = addAction(note, trMenu("&Add Note"), QStringLiteral("actionAddNote"),
                                QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N));
    actions.addNoteBeneath =
        addAction(note, trMenu("Add Note &Beneath"), QStringLiteral("actionAddNoteBeneath"),
                  QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_B));
    actions.editNote = addAction(note, trMenu("&Edit Note"), QStringLiteral("actionEditNote"),
                                 QKeySequence(Qt::Key_F2));
    // The column takes Delete itself; the shortcut is shown here so the menu teaches it.
    actions.deleteNote = addAction(note, trMenu("&Delete"), QStringLiteral("actionDeleteNote"),
                                   QKeySequence(Qt::Key_Delete));
    note->addSeparator();
    note->addActions({actions.cut, actions.copy, actions.paste});
    note->addSeparator();
    QMenu* move = note->addMenu(trMenu("&Move"));
    move->setObjectName(QStringLiteral("menuMove"));
    actions.moveUp = addAction(move, trMenu("&Up"), QStringLiteral("actionMoveUp"),
                               QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Up));
    actions.moveDown = addAction(move, trMenu("&Down"), QStringLiteral("actionMoveDown"),
                                 QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Down));
    actions.moveOut =
        addAction(move, trMenu("&Out, After Its Parent"), QStringLiteral("actionMoveOut"),
                  QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Left));
    actions.moveIn =
        addAction(move, trMenu("&In, Under the Note Above"), QStringLiteral("actionMoveIn"),
                  QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Right));

    QMenu* help = bar->addMenu(trMenu("&Help"));
    actions.help = addAction(help, trMenu("Quillery &Help"), QStringLiteral("actionHelp"),
                             QKeySequence::HelpContents);
    actions.sendFeedback =
        addAction(help, trMenu("Send &Feedback…"), QStringLiteral("actionSendFeedback"));
    actions.followOnSocialNetwork =
        addAction(help, trMenu("Follow @%1…").arg(AppInfo::socialHandle()),
                  QStringLiteral("actionFollowOnSocialNetwork"));
    help->addSeparator();
    actions.about = addAction(help, trMenu("&About Quillery"), QStringLiteral("actionAbout"));
    actions.about->setMenuRole(QAction::AboutRole);

    // Icons from the desktop's icon theme where desktop apps show them; none without a theme.
    const std::pair<QAction*, const char*> icons[] = {
        {actions.newDocument, "document-new"},
        {actions.open, "document-open"},
        {actions.openRecent->menuAction(), "document-open-recent"},
        {actions.save, "document-save"},
        {actions.saveAs, "document-save-as"},
        {actions.revert, "document-revert"},
        {actions.close, "window-close"},
        {actions.quit, "application-exit"},
        {actions.undo, "edit-undo"},
        {actions.redo, "edit-redo"},
        {actions.cut, "edit-cut"},
        {actions.copy, "edit-copy"},
        {actions.paste, "edit-paste"},
        {actions.find, "edit-find"},
        {actions.deletedNotes, "user-trash"},
        {actions.addNote, "list-add"},
        {actions.deleteNote, "edit-delete"},
        {actions.moveUp, "go-up"},
        {actions.moveDown, "go-down"},
        {actions.moveOut, "go-previous"},
        {actions.moveIn, "go-next"},
        {actions.help, "help-contents"},
        {actions.sendFeedback, "mail-message-new"},
        {actions.about, "help-about"},
    };
    for (const auto& [action, name] : icons)
        action->setIcon(QIcon::fromTheme(QString::fromLatin1(name)));
    return actions;
}

} // namespace quillery
