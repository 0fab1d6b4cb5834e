#include "app/StorageErrorText.h"

#include "storage/StorageError.h"

#include <QCoreApplication>

namespace quillery {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("StorageErrorText", text);
}

QString readingAdvice(const StorageError& error) {
    using namespace storage_errors;
    const bool app = error.domain == app_errors::kDomain;
    if ((app && error.code == app_errors::kNoSuchNotebook) ||
        (error.domain == kCocoaDomain && error.code == kReadNoSuchFile)) {
        return tr("Check that the notebook is still where it was, or open it from its new place "
                  "with File → Open.");
    }
    if ((app && error.code == app_errors::kNotANotebook) ||
        (error.domain == kCocoaDomain && error.code == kReadCorruptFile)) {
        return tr("A notebook is a folder whose name ends in “.quillery”; choose one with File → "
                  "Open.");
    }
    if (error.domain == kCocoaDomain && error.code == kReadNoPermission)
        return tr("Check that you may read the notebook's folder and the files in it.");
    if ((error.domain == kCocoaDomain && error.code == kInvalidJson) ||
        (error.domain == kOSStatusDomain && error.code == kMalformedJournal)) {
        return tr("If a sync tool is still copying the notebook, wait until it is done and open "
                  "the notebook again. Otherwise put back the journal named above from a "
                  "backup, or move it out of the notebook's folder to open the rest.");
    }
    if (error.domain == kCocoaDomain && error.code == kReadTooLarge) {
        return tr("Close other programs to free memory and open the notebook again. A journal "
                  "this large was not written by Quillery: move it out of the notebook's folder "
                  "to open the rest.");
    }
    return tr("Check that the disk holding the notebook is connected, then try again.");
}

QString savingAdvice(const StorageError& error) {
    using namespace storage_errors;
    if (error.domain == kCocoaDomain) {
        switch (error.code) {
        case kWriteOutOfSpace:
            return tr("Your changes are still here. Make room on the disk, then save again with "
                      "File → Save.");
        case kWriteNoPermission:
            return tr("Your changes are still here. Check that you may change the notebook's "
                      "folder, or save a copy elsewhere with File → Save As….");
        case kWriteReadOnlyVolume:
            return tr("Your changes are still here. The disk can't be written to; save a copy "
                      "elsewhere with File → Save As….");
        default:
            break;
        }
    }
    return tr("Your changes are still here. Try again with File → Save, or save a copy elsewhere "
              "with File → Save As….");
}

} // namespace

QString storageErrorDetails(const StorageError& error, bool saving) {
    const QString advice = saving ? savingAdvice(error) : readingAdvice(error);
    const QString reason = QString::fromStdString(error.message);
    return reason.isEmpty() ? advice : reason + QStringLiteral("\n\n") + advice;
}

} // namespace quillery
