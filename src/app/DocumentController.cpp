#include "app/DocumentController.h"

#include "app/DocumentPrompts.h"
#include "app/DocumentWindow.h"
#include "app/MessageBar.h"
#include "app/StorageErrorText.h"
#include "document/Document.h"
#include "navigation/ColumnRow.h"
#include "storage/NotebookPackage.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

namespace quillery {

namespace {

const std::string kPackageSuffix = ".quillery";

// A journal or picture inside a package stands for the package, so a file manager or shell
// completion that hands over a file inside it still opens the notebook.
std::filesystem::path packageOf(const std::filesystem::path& location) {
    std::error_code error;
    std::filesystem::path path = std::filesystem::absolute(location, error).lexically_normal();
    if (!path.has_filename())
        path = path.parent_path();
    for (std::filesystem::path p = path; p.has_parent_path() && p != p.parent_path();
         p = p.parent_path()) {
        if (p.extension() == kPackageSuffix && std::filesystem::is_directory(p, error))
            return p;
    }
    return path;
}

QString qtPath(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

// Shrinks and moves the window, not shown yet, so that it lies wholly on the screen it opens on
// (a size kept from a larger screen, a first window on a small one), leaving room for the title
// bar the window manager adds.
void fitOnScreen(QWidget& window) {
    const QScreen* screen = QGuiApplication::screenAt(window.geometry().center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect available = screen->availableGeometry();
    const int titleBar = window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const QSize size =
        window.size().boundedTo(QSize(available.width(), available.height() - titleBar));
    if (size != window.size())
        window.resize(size);
    // A window never placed is placed by the window manager.
    if (!window.testAttribute(Qt::WA_Moved))
        return;
    const QRect place = window.geometry();
    const int x = std::clamp(place.x(), available.left(), available.right() + 1 - size.width());
    const int y =
        std::clamp(place.y(), available.top() + titleBar,
                   std::max(available.top() + titleBar, available.bottom() + 1 - size.height()));
    if (x != place.x() || y != place.y())
        window.move(x, y);
}

} // namespace

DocumentController::DocumentController(Preferences& preferences, const PictureCodec& codec,
                                       DocumentPrompts& prompts, QObject* parent)
    : QObject(parent)
    , m_preferences(preferences)
    , m_codec(codec)
    , m_prompts(prompts) {
}

// Windows that are still open own their documents, which refer to the preferences and codec
// this controller was given; they must go before those do.
DocumentController::~DocumentController() {
    const std::vector<DocumentWindow*> windows = m_windows;
    for (DocumentWindow* window : windows)
        delete window;
}

std::unique_ptr<Document> DocumentController::makeDocument() const {
    return std::make_unique<Document>(m_preferences, &m_codec);
}

DocumentController::ReadResult
DocumentController::readDocument(const std::filesystem::path& location) const {
    std::error_code error;
    const QString name = qtPath(location.filename());
    if (!std::filesystem::exists(location, error)) {
        return {nullptr, StorageError{std::string(app_errors::kDomain), app_errors::kNoSuchNotebook,
                                      tr("“%1” doesn't exist.").arg(name).toStdString()}};
    }
    if (!std::filesystem::is_directory(location, error)) {
        return {nullptr,
                StorageError{std::string(app_errors::kDomain), app_errors::kNotANotebook,
                             tr("“%1” is not a Quillery notebook.").arg(name).toStdString()}};
    }
    auto document = makeDocument();
    if (auto failure = package::read(*document, location, m_codec))
        return {nullptr, std::move(failure)};
    return {std::move(document), std::nullopt};
}

DocumentWindow* DocumentController::newDocument() {
    ++m_untitledCount;
    const QString name =
        m_untitledCount == 1 ? tr("Untitled") : tr("Untitled %1").arg(m_untitledCount);
    DocumentWindow* window = addWindow(makeDocument(), name);
    window->show();
    return window;
}

DocumentWindow* DocumentController::openDocument(const std::filesystem::path& location,
                                                 QWidget* dialogParent) {
    const std::filesystem::path package = packageOf(location);
    if (DocumentWindow* open = windowFor(package)) {
        open->show();
        open->raise();
        open->activateWindow();
        return open;
    }
    // Until its window stands: the columns are built from the whole tree too.
    m_session.setNotebookBeingOpened(qtPath(package));
    ReadResult result = readDocument(package);
    if (!result.document) {
        m_session.setNotebookBeingOpened(QString());
        m_prompts.warn(dialogParent,
                       tr("The notebook “%1” could not be opened.")
                           .arg(QFileInfo(qtPath(package)).completeBaseName()),
                       result.error ? storageErrorDetails(*result.error, false) : QString());
        return nullptr;
    }
    m_recentDocuments.note(qtPath(package));
    // An untitled notebook nobody has written in yet makes way for the one opened, as the
    // window shown at start-up usually is.
    std::vector<DocumentWindow*> unused;
    std::ranges::copy_if(m_windows, std::back_inserter(unused),
                         [](DocumentWindow* open) { return open->isUntouchedAndUntitled(); });
    DocumentWindow* window = addWindow(std::move(result.document), QString());
    window->show();
    m_session.setNotebookBeingOpened(QString());
    for (DocumentWindow* open : unused)
        open->close();
    rememberOpenNotebooks();
    return window;
}

void DocumentController::openWithDialog(QWidget* dialogParent) {
    if (auto location = m_prompts.chooseDocumentToOpen(dialogParent, lastNotebookFolder()))
        openDocument(*location, dialogParent);
}

QString DocumentController::lastNotebookFolder() const {
    const QStringList recent = m_recentDocuments.paths();
    return recent.isEmpty() ? QString() : QFileInfo(recent.first()).absolutePath();
}

void DocumentController::openForAnotherStart(const QStringList& packages) {
    for (const QString& package : packages)
        openDocument(package.toStdString());
    if (!packages.isEmpty())
        return;
    if (m_windows.empty()) {
        newDocument();
        return;
    }
    DocumentWindow* window = m_windows.back();
    window->show();
    window->raise();
    window->activateWindow();
}

std::size_t DocumentController::restoreSession() {
    // Opened again, it would end the app again at every start.
    const QString failed = m_session.notebookBeingOpened();
    m_session.setNotebookBeingOpened(QString());
    for (const QString& path : m_session.openNotebooks()) {
        std::error_code error;
        if (path != failed && std::filesystem::is_directory(path.toStdString(), error))
            openDocument(path.toStdString());
    }
    rememberOpenNotebooks();
    if (!failed.isEmpty()) {
        const QString notice =
            tr("“%1” was not opened again: Quillery ended while opening it last time, perhaps "
               "for want of memory. Open it with File → Open… to try again.")
                .arg(QFileInfo(failed).completeBaseName());
        if (m_windows.empty())
            m_noticeForNextWindow = notice;
        else
            m_windows.front()->messageBar()->showMessage(notice);
    }
    return m_windows.size();
}

bool DocumentController::closeAll() {
    const std::vector<DocumentWindow*> windows = m_windows;
    // Every question is answered before any window goes, so a Cancel leaves them all open.
    for (DocumentWindow* window : windows) {
        if (!window->prepareToClose()) {
            for (DocumentWindow* each : windows)
                each->keepOpen();
            return false;
        }
    }
    for (DocumentWindow* window : windows)
        window->close();
    return true;
}

void DocumentController::quit() {
    rememberOpenNotebooks();
    m_quitting = true;
    const bool closed = closeAll();
    m_quitting = false;
    if (closed)
        QCoreApplication::quit();
}

void DocumentController::rememberOpenNotebooks(const DocumentWindow* closing) {
    QStringList paths;
    for (const DocumentWindow* window : m_windows) {
        const auto& location = window->document().fileLocation();
        // A closed window is hidden at once but goes only when the event loop next runs.
        if (window != closing && window->isVisible() && location)
            paths.append(qtPath(*location));
    }
    m_session.setOpenNotebooks(paths);
}

void DocumentController::windowWillClose(const DocumentWindow& window) {
    m_session.setLastWindowSize(window.normalGeometry().size());
    if (const auto& location = window.document().fileLocation()) {
        m_session.setWindowGeometry(qtPath(*location), window.saveGeometry());
        m_session.setColumnWidths(qtPath(*location), window.columnRow()->chosenWidths());
    }
    const bool othersStay = std::ranges::any_of(m_windows, [&window](const DocumentWindow* other) {
        return other != &window && other->isVisible();
    });
    if (!m_quitting && othersStay)
        rememberOpenNotebooks(&window);
}

DocumentWindow* DocumentController::addWindow(std::unique_ptr<Document> document,
                                              const QString& untitledName) {
    auto* window = new DocumentWindow(*this, std::move(document), untitledName);
    placeWindow(*window);
    m_windows.push_back(window);
    if (!m_noticeForNextWindow.isEmpty())
        window->messageBar()->showMessage(std::exchange(m_noticeForNextWindow, QString()));
    connect(window, &QObject::destroyed, this, [this, window] { std::erase(m_windows, window); });
    return window;
}

void DocumentController::placeWindow(DocumentWindow& window) const {
    const auto& location = window.document().fileLocation();
    if (location)
        window.columnRow()->setChosenWidths(m_session.columnWidths(qtPath(*location)));
    if (!location || !window.restoreGeometry(m_session.windowGeometry(qtPath(*location)))) {
        if (const QSize size = m_session.lastWindowSize(); size.isValid())
            window.resize(size);
    }
    fitOnScreen(window);
}

DocumentWindow* DocumentController::windowFor(const std::filesystem::path& location) const {
    std::error_code error;
    for (DocumentWindow* window : m_windows) {
        const auto& open = window->document().fileLocation();
        if (open && std::filesystem::equivalent(*open, location, error))
            return window;
    }
    return nullptr;
}

} // namespace quillery
