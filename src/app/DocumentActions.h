#pragma once

class QAction;
class QMainWindow;
class QMenu;

namespace quillery {

// The menu bar of a document window: File, Edit, View, Note and Help with their shortcuts. The
// window connects the actions; this only lays the menus out, so the key map lives in one place.
struct DocumentActions {
    QAction* newDocument = nullptr;
    QAction* open = nullptr;
    QMenu* openRecent = nullptr;
    QAction* save = nullptr;
    QAction* saveAs = nullptr;
    QAction* revert = nullptr;
    QAction* importOutline = nullptr;
    QAction* exportNote = nullptr;
    QAction* exportNotebook = nullptr;
    QAction* close = nullptr;
    QAction* quit = nullptr;
    QAction* undo = nullptr;
    QAction* redo = nullptr;
    QAction* cut = nullptr;
    QAction* copy = nullptr;
    QAction* paste = nullptr;
    QAction* find = nullptr;
    QAction* findNext = nullptr;
    QAction* findPrevious = nullptr;
    QAction* deletedNotes = nullptr;
    QAction* addNote = nullptr;
    QAction* addNoteBeneath = nullptr;
    QAction* editNote = nullptr;
    QAction* deleteNote = nullptr;
    QAction* moveUp = nullptr;
    QAction* moveDown = nullptr;
    QAction* moveOut = nullptr;
    QAction* moveIn = nullptr;
    QAction* help = nullptr;
    QAction* sendFeedback = nullptr;
    QAction* followOnSocialNetwork = nullptr;
    QAction* about = nullptr;

    // Builds the menus into the window's menu bar; the actions are children of the window.
    static DocumentActions create(QMainWindow& window);
};

} // namespace quillery
