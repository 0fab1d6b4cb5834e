#include "columns/ColumnPrompts.h"

#include <QMessageBox>
#include <QPushButton>

namespace quillery {

namespace {

bool askToDelete(QWidget* parent) {
    QMessageBox box(QMessageBox::Warning, QMessageBox::tr("Are you sure?"),
                    QMessageBox::tr("Are you sure?"), QMessageBox::NoButton, parent);
    box.setInformativeText(QMessageBox::tr(
        "Deleted notes can be found in View → Deleted Notes, where Put Back returns them."));
    QPushButton* deleteButton =
        box.addButton(QMessageBox::tr("Delete"), QMessageBox::DestructiveRole);
    QPushButton* cancelButton = box.addButton(QMessageBox::tr("Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(deleteButton);
    box.setEscapeButton(cancelButton);
    box.exec();
    return box.clickedButton() == deleteButton;
}

void reportMissingFile(QWidget* parent) {
    QMessageBox box(QMessageBox::Warning, QMessageBox::tr("File missing"),
                    QMessageBox::tr("File missing"), QMessageBox::Ok, parent);
    box.setInformativeText(QMessageBox::tr("Sorry, that image was not found."));
    box.exec();
}

} // namespace

ColumnPrompts ColumnPrompts::standard() {
    return {askToDelete, reportMissingFile};
}

} // namespace quillery
