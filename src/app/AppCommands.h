#pragma once

#include <QObject>

class QUrl;
class QWidget;

namespace quillery {

// The application's own menu commands: Help, Send Feedback, the social-network page, About, and
// Add Note when no column takes it. Addresses open in the desktop's default programs; when none
// takes one, the user hears why and what to do.
class AppCommands : public QObject {
    Q_OBJECT

public:
    explicit AppCommands(QObject* parent = nullptr);

    // Add Note: the column holding the keyboard focus adds a note; without one, a new notebook.
    void addNote();
    // Each opens its address; parent is the window a failure is reported over.
    void showHelp(QWidget* parent = nullptr);
    void sendFeedback(QWidget* parent = nullptr);
    void followOnSocialNetwork(QWidget* parent = nullptr);
    // Shows the About panel, made once and kept until it is closed.
    void showAbout(QWidget* parent);
    void openAddress(const QUrl& address, QWidget* parent);

signals:
    // Add Note found no column with the focus: a new notebook takes the note.
    void newNotebookRequested();
    // No program took the address: a headline and what the user can do instead.
    void addressNotOpened(QWidget* parent, const QString& text, const QString& details);

private:
    QWidget* m_about = nullptr;
};

} // namespace quillery
