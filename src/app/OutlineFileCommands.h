#pragma once

#include <QObject>

namespace quillery {

class DocumentPrompts;
class DocumentWindow;
class NotebookNode;
struct DocumentActions;

// File > Import…, Export Note… and Export Notebook… of a document window. An import goes where a
// paste goes (after the selected note of the active column, else at the end of the top level) as
// one undo step named "Import", and its first note is selected; a file with an error adds nothing
// and the warning names the file and the line. An export writes the selected note with its
// subtree, or the whole notebook, in the format of the save dialog's filter; a web page gets its
// pictures copied into a folder beside it.
class OutlineFileCommands : public QObject {
    Q_OBJECT

public:
    // The window owns the commands; the prompts outlive them.
    OutlineFileCommands(DocumentWindow& window, const DocumentActions& actions,
                        DocumentPrompts& prompts);

    // The commands wait while a panel is shown, as the columns do.
    void setBrowsing(bool browsing);

    void importOutline();
    void exportNote();
    void exportNotebook();

private:
    void exportNotes(const NotebookNode* note, const QString& name);

    DocumentWindow& m_window;
    const DocumentActions& m_actions;
    DocumentPrompts& m_prompts;
};

} // namespace quillery
