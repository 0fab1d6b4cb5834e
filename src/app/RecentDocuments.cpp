#include "app/RecentDocuments.h"

#include <QSettings>

namespace quillery {

namespace {

const QString kKey = QStringLiteral("recentDocuments");

} // namespace

QStringList RecentDocuments::paths() const {
    return QSettings().value(kKey).toStringList();
}

void RecentDocuments::note(const QString& path) {
    QStringList list = paths();
    list.removeAll(path);
    list.prepend(path);
    store(list);
}

void RecentDocuments::remove(const QString& path) {
    QStringList list = paths();
    list.removeAll(path);
    store(list);
}

void RecentDocuments::clear() {
    store({});
}

void RecentDocuments::store(const QStringList& paths) {
    QSettings().setValue(kKey, paths.mid(0, kMaximum));
}

} // namespace quillery
