#include "app/AppDelegate.h"

#include "app/AboutViewController.h"
#include "app/AppInfo.h"
#include "columns/ListViewController.h"

#include <QApplication>
#include <QDesktopServices>

namespace quillery {

AppDelegate::AppDelegate(QObject* parent)
    : QObject(parent) {
}

ListViewController* AppDelegate::columnContaining(QWidget* widget) {
    for (; widget; widget = widget->parentWidget()) {
        if (auto* column = qobject_cast<ListViewController*>(widget))
            return column;
    }
    return nullptr;
}

void AppDelegate::didTapAddNode() {
    if (auto* column = columnContaining(QApplication::focusWidget());
        column && column->isColumnEnabled()) {
        column->didTapAddNode();
        return;
    }
    emit newNotebookRequested();
}

// Whether a program took the address is not reported; there is nothing the user could do.
void AppDelegate::showHelp() {
    QDesktopServices::openUrl(AppInfo::helpUrl());
}

void AppDelegate::didTapSendFeedback() {
    QDesktopServices::openUrl(QUrl(AppInfo::feedbackMailAddress(
        AppInfo::feedbackEmail(), AppInfo::version(), AppInfo::buildNumber())));
}

void AppDelegate::didTapSendFeedbackViaSocialNetwork() {
    QDesktopServices::openUrl(AppInfo::socialUrl());
}

void AppDelegate::showAbout(QWidget* parent) {
    if (!m_about) {
        auto* about = new AboutViewController(parent);
        about->setAttribute(Qt::WA_DeleteOnClose);
        connect(about, &QObject::destroyed, this, [this] { m_about = nullptr; });
        m_about = about;
    }
    m_about->show();
    m_about->raise();
    m_about->activateWindow();
}

} // namespace quillery
