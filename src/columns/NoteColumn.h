#pragma once

#include "columns/ColumnCommand.h"
#include "columns/ColumnPrompts.h"
#include "columns/NoteEditorPanel.h"
#include "model/NotebookNode.h"

#include <QWidget>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

class QLabel;

namespace quillery {

class AddNoteButton;
class ColumnPasteHandler;
class ColumnUpdater;
class Document;
class NodeListModel;
class NodeRowDelegate;
class NoteListView;
struct DocumentUpdate;

// One column: the children of one note as a list, the "No sub-notes yet" label and the add
// button. It turns keys, clicks and drops into the document's edit operations and follows the
// document's change notifications one row operation at a time.
//
// The column observes the document from construction until it is destroyed; the document must
// outlive it.
class NoteColumn : public QWidget {
    Q_OBJECT

public:
    explicit NoteColumn(Document* document, QWidget* parent = nullptr);
    ~NoteColumn() override;

    Document* document() const { return m_document; }

    const NodePtr& parentNote() const;
    void setParentNote(NodePtr node);
    int depth() const { return m_depth; }
    void setDepth(int depth);
    // False while the navigation shows the editor: the list and button are disabled and the
    // unselected rows drawn dimmed.
    bool isColumnEnabled() const { return m_enabled; }
    void setColumnEnabled(bool enabled);

    // Takes the keyboard focus (the list, selecting row 0 when nothing is selected, or the add
    // button of an empty column) and scrolls the column into view.
    void takeFocus();

    // The Note menu's commands; they act on this column.
    void addNote();
    void addNoteBeneath();
    // The editor for a text note; a picture note opens in the desktop's picture viewer (or,
    // while the notebook has never been saved, as a preview), and a picture whose file is gone
    // or that no viewer took is reported.
    void editSelectedNote();
    // Deletes the selected note, asking first unless it is empty.
    void deleteSelectedNote();
    // Edit > Paste from the clipboard (see ColumnPasteHandler) at pasteIndex(); the note pasted
    // is selected. Nothing can be pasted while the column is disabled or a new note is being
    // typed.
    bool canPaste() const;
    bool paste();
    // Where a paste or an import goes: after the selected note, or at the end when none is
    // selected or the add button has the focus.
    std::size_t pasteIndex() const;
    // Selects the row of the note, if it is one of this column's, and gives the list the focus.
    void selectNote(const NotebookNode& note);

    // The selected row (-1 for none) and its note; selecting runs the selection handling, so
    // noteSelected() is emitted.
    int selectedRow() const;
    NodePtr selectedNode() const;
    void selectRow(int row);
    // The new note being typed, present from an add command until its editor is done.
    const NodePtr& temporaryNode() const { return m_temporaryNode; }

    // Replaces the confirmation dialogs (tests use their own).
    void setPrompts(ColumnPrompts prompts);

    NoteListView* listView() const { return m_listView; }

    // The width at which the column's notes need no wrapping (measured on its first rows when
    // there are very many), whatever width it has now.
    int fittingWidth() const;

    // The column that contains the widget, if any.
    static NoteColumn* containing(QWidget* widget);

    QSize sizeHint() const override;

signals:
    // The selected note changed, to this one, or to none.
    void noteSelected(const NodePtr& note);
    void selectionCleared();
    // Space on a selected picture note.
    void picturePreviewRequested(const NodePtr& note);
    // Left and Right: the keyboard focus should go to the neighbouring column.
    void focusLeftRequested();
    void focusRightRequested();
    // The note editor to show as the column right of this one. It is parented to the column and
    // hidden; the receiver takes it over.
    void editorRequested(NoteEditorPanel* editor);
    // The editor's change is recorded (or the new note thrown away): the editor can go.
    void editorDone();
    // A drop onto this column moved or added the note; the row shows it.
    void noteDropped(const NodePtr& note);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    int rowCount() const;
    bool isValidRow(int row) const { return row >= 0 && row < rowCount(); }
    void updateEmptyLabel();
    void followSelection();
    void followDocument(const DocumentUpdate& update);
    // False for keys that are no command of the column.
    bool perform(ColumnCommand command);
    void previewSelectedPicture();
    void moveUp();
    void moveDown();
    void scrollIntoView();

    // The new note: it sits among the children, unrecorded, until its editor is done.
    void startNewNote(std::size_t index);
    // Takes the new note out of the children (and its row out of the list) again; returns the
    // index it had.
    std::size_t removeTemporaryNode();
    void showEditor(const NodePtr& node);
    void editorFinished(const NodePtr& node, const std::string& text);
    void editorCancelled(const NodePtr& node);
    void forgetEditedNote();

    Document* m_document;
    NodeListModel* m_model;
    NodeRowDelegate* m_rows;
    NoteListView* m_listView;
    QLabel* m_emptyLabel;
    AddNoteButton* m_addButton;
    std::unique_ptr<ColumnUpdater> m_updater;
    std::unique_ptr<ColumnPasteHandler> m_paste;
    ColumnPrompts m_prompts = ColumnPrompts::standard();
    int m_depth = 0;
    bool m_enabled = true;
    NodePtr m_temporaryNode;
    NodePtr m_editedNote; // kept alive while the delegate draws it marked
    bool m_temporaryRowShown = false;
    bool m_selectionHandlingSuspended = false;
    std::uint64_t m_observer = 0;
};

} // namespace quillery
