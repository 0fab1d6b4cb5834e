#pragma once

#include <QObject>
#include <QPointer>

class QMenuBar;
class QWidget;

namespace quillery {

// Gives the keyboard back to the widget that had it (a column, the find field) when a menu of
// the window's menu bar closes without a command, as by Escape or a click elsewhere. Qt leaves
// the bar itself with the keyboard then, so keys would go to the menu titles and the selection
// be drawn as if the column were not in use. Menus added to the bar after it is made are not
// followed.
class MenuBarFocus : public QObject {
    Q_OBJECT

public:
    // Parented to the bar.
    explicit MenuBarFocus(QMenuBar& bar);

private:
    void remember(QWidget* widget);
    void giveBack();

    QMenuBar& m_bar;
    QPointer<QWidget> m_before;
};

} // namespace quillery
