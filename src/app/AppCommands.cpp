#include "app/AppCommands.h"

#include "app/AboutDialog.h"
#include "app/AppInfo.h"
#include "columns/NoteColumn.h"

#include <QApplication>
#include <QDesktopServices>
#include <QPointer>
#include <QUrl>

namespace quillery {

AppCommands::AppCommands(QObject* parent)
    : QObject(parent) {
}

void AppCommands::addNote() {
    if (auto* column = NoteColumn::containing(QApplication::focusWidget());
        column && column->isColumnEnabled()) {
        column->addNote();
        return;
    }
    emit newNotebookRequested();
}

void AppCommands::showHelp(QWidget* parent) {
    openAddress(AppInfo::helpUrl(), parent);
}

void AppCommands::sendFeedback(QWidget* parent) {
    openAddress(QUrl(AppInfo::feedbackMailAddress(AppInfo::feedbackEmail(), AppInfo::version(),
                                                  AppInfo::buildNumber())),
                parent);
}

void AppCommands::followOnSocialNetwork(QWidget* parent) {
    openAddress(AppInfo::socialUrl(), parent);
}

void AppCommands::openAddress(const QUrl& address, QWidget* parent) {
    if (QDesktopServices::openUrl(address))
        return;
    if (address.scheme() == QStringLiteral("mailto")) {
        emit addressNotOpened(
            parent, tr("No mail program opened a message to %1.").arg(address.path()),
            tr("Set up a mail program as the desktop's program for mail, or write to %1 from "
               "any mail service.")
                .arg(address.path()));
        return;
    }
    const QString shown = address.toDisplayString();
    emit addressNotOpened(parent, tr("No web browser opened %1.").arg(shown),
                          tr("Install a web browser, or set one as the desktop's browser, and try "
                             "again; or open %1 on another device.")
                              .arg(shown));
}

void AppCommands::showAbout(QWidget* parent) {
    if (!m_about) {
        auto* about = new AboutDialog(parent);
        about->setAttribute(Qt::WA_DeleteOnClose);
        connect(about, &AboutDialog::addressChosen, this,
                [this, about](const QUrl& address) { openAddress(address, about); });
        // The window it was opened from takes the keyboard again once it closes.
        connect(about, &QDialog::finished, this, [parent = QPointer<QWidget>(parent)] {
            if (parent) {
                parent->window()->activateWindow();
                parent->window()->raise();
            }
        });
        connect(about, &QObject::destroyed, this, [this] { m_about = nullptr; });
        m_about = about;
    }
    m_about->show();
    m_about->raise();
    m_about->activateWindow();
}

} // namespace quillery
