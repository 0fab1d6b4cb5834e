#include "app/MenuBarFocus.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>

namespace quillery {

MenuBarFocus::MenuBarFocus(QMenuBar& bar)
    : QObject(&bar)
    , m_bar(bar) {
    for (QAction* action : bar.actions()) {
        QMenu* menu = action->menu();
        if (!menu)
            continue;
        connect(menu, &QMenu::aboutToShow, this, [this] { remember(QApplication::focusWidget()); });
        // A turn later: a command chosen from the menu may move the focus itself, and moving
        // from one menu of the bar to the next hides one before it shows the other.
        connect(menu, &QMenu::aboutToHide, this,
                [this] { QTimer::singleShot(0, this, &MenuBarFocus::giveBack); });
    }
    // Alt, or F10, gives the bar the keyboard before any menu shows.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* old, QWidget* now) {
        if (now == &m_bar)
            remember(old);
    });
}

void MenuBarFocus::remember(QWidget* widget) {
    if (widget && widget != &m_bar && widget->window() == m_bar.window())
        m_before = widget;
}

void MenuBarFocus::giveBack() {
    if (!m_bar.hasFocus() || QApplication::activePopupWidget())
        return;
    if (m_before && m_before->isVisible() && m_before->isEnabled())
        m_before->setFocus(Qt::MenuBarFocusReason);
}

} // namespace quillery
