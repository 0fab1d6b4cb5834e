#pragma once

#include "model/NotebookNode.h"

#include <QWidget>

#include <string>

class QPushButton;

namespace quillery {

class NoteTextEdit;

// The panel in which one note's text is typed or changed. Typing has its own undo history,
// which lives and dies with the panel and never reaches the document's. Done (also Ctrl+Return)
// and Cancel (also Escape) are signalled to the column that opened the panel, which records the
// change or throws a new note away and then asks for the panel to be taken away.
class NoteEditorPanel : public QWidget {
    Q_OBJECT

public:
    explicit NoteEditorPanel(QWidget* parent = nullptr);

    const NodePtr& note() const { return m_note; }
    // Replaces the text with the note's text, as stored.
    void setNote(NodePtr note);
    NoteTextEdit* textEdit() const { return m_textEdit; }
    // The text as it stands in the editor.
    std::string text() const;

    void finish();
    void cancel();

signals:
    // The text as it stands, changed or not. A receiver that destroys the panel must use
    // deleteLater(), as the panel is still on the call stack.
    void finished(const NodePtr& note, const std::string& text);
    void cancelled(const NodePtr& note);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void updateUI();

    NoteTextEdit* m_textEdit;
    QPushButton* m_doneButton;
    QPushButton* m_cancelButton;
    NodePtr m_note;
};

} // namespace quillery
