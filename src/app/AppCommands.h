#pragma once

#include <QObject>

class QWidget;

namespace quillery {

// The application's own menu commands: Help, Send Feedback, the social-network page, About, and
// Add Note when no column takes it. Addresses open in the desktop's default programs.
class AppCommands : public QObject {
    Q_OBJECT

public:
    explicit AppCommands(QObject* parent = nullptr);

    // Add Note: the column holding the keyboard focus adds a note; without one, a new notebook.
    void addNote();
    void showHelp();
    void sendFeedback();
    void followOnSocialNetwork();
    // Shows the About panel, made once and kept until it is closed.
    void showAbout(QWidget* parent);

signals:
    // Add Note found no column with the focus: a new notebook takes the note.
    void newNotebookRequested();

private:
    QWidget* m_about = nullptr;
};

} // namespace quillery
