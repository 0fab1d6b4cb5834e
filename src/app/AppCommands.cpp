#include "app/AppCommands.h"

#include "app/AboutDialog.h"
#include "app/AppInfo.h"
#include "columns/NoteColumn.h"

#include <QApplication>
#include <QDesktopServices>

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

// Whether a program took the address is not reported; there is nothing the user could do.
void AppCommands::showHelp() {
    QDesktopServices::openUrl(AppInfo::helpUrl());
}

void AppCommands::sendFeedback() {
    QDesktopServices::openUrl(QUrl(AppInfo::feedbackMailAddress(
        AppInfo::feedbackEmail(), AppInfo::version(), AppInfo::buildNumber())));
}

void AppCommands::followOnSocialNetwork() {
    QDesktopServices::openUrl(AppInfo::socialUrl());
}

void AppCommands::showAbout(QWidget* parent) {
    if (!m_about) {
        auto* about = new AboutDialog(parent);
        about->setAttribute(Qt::WA_DeleteOnClose);
        connect(about, &QObject::destroyed, this, [this] { m_about = nullptr; });
        m_about = about;
    }
    m_about->show();
    m_about->raise();
    m_about->activateWindow();
}

} // namespace quillery
