#pragma once

#include <QObject>
#include <QUrl>

#include <functional>

class QWidget;

namespace quillery {

class ListViewController;

// The application's own menu commands: Help, Send Feedback, the social-network page, About, and
// Add Note when no column takes it. It keeps no state beyond how to open addresses and how to
// make a new notebook, both handed in by the shell.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    using UrlOpener = std::function<bool(const QUrl&)>;
    using NewDocumentHandler = std::function<void()>;

    explicit AppDelegate(QObject* parent = nullptr);

    // Opens addresses with the desktop's default programs unless told otherwise (tests).
    void setUrlOpener(UrlOpener opener);
    const UrlOpener& urlOpener() const { return m_urlOpener; }
    // What Add Note does when no column has the focus: the shell makes a new notebook.
    void setNewDocumentHandler(NewDocumentHandler handler);

    // Add Note: the column holding the keyboard focus adds a note; without one, a new notebook.
    void didTapAddNode();
    void showHelp();
    void didTapSendFeedback();
    void didTapSendFeedbackViaSocialNetwork();
    // Shows the About panel, made once and kept until it is closed.
    void showAbout(QWidget* parent);

    // The column that contains the widget, if any.
    static ListViewController* columnContaining(QWidget* widget);

private:
    UrlOpener m_urlOpener;
    NewDocumentHandler m_newDocument;
    QWidget* m_about = nullptr;
};

} // namespace quillery
