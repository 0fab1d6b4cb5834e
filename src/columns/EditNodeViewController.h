#pragma once

#include "model/NotebookNode.h"

#include <QWidget>

class QPlainTextEdit;
class QPushButton;

namespace quillery {

class EditNodeViewControllerDelegate;

// The panel in which one note's text is typed or changed. Typing has its own undo history,
// which lives and dies with the panel and never reaches the document's. Done (also Ctrl+Return)
// and Cancel (also Escape) report to the delegate, the column that opened the panel, which
// records the change or throws a new note away and then asks for the panel to be taken away.
class EditNodeViewController : public QWidget {
    Q_OBJECT

public:
    explicit EditNodeViewController(QWidget* parent = nullptr);

    const NodePtr& representedNode() const { return m_representedNode; }
    // Replaces the text with the note's text, as stored.
    void setRepresentedNode(NodePtr node);
    EditNodeViewControllerDelegate* delegate() const { return m_delegate; }
    void setDelegate(EditNodeViewControllerDelegate* delegate) { m_delegate = delegate; }

    QPlainTextEdit* textView() const { return m_textView; }

    // The delegate may ask for the panel to be destroyed from inside these; destroy it with
    // deleteLater(), as the panel is still on the call stack.
    void didTapDone();
    void didTapCancel();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void updateUI();

    QPlainTextEdit* m_textView;
    QPushButton* m_doneButton;
    QPushButton* m_cancelButton;
    EditNodeViewControllerDelegate* m_delegate = nullptr;
    NodePtr m_representedNode;
};

} // namespace quillery
