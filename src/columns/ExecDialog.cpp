#include "columns/ExecDialog.h"

#include <QApplication>
#include <QDialog>
#include <QPointer>

namespace quillery {

int execDialog(QDialog& dialog) {
    const QPointer<QWidget> focus = QApplication::focusWidget();
    const int result = dialog.exec();
    if (focus && focus->isVisible()) {
        focus->window()->activateWindow();
        focus->setFocus(Qt::ActiveWindowFocusReason);
    }
    return result;
}

} // namespace quillery
