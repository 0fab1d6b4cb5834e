#include "app/PackageWatcher.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

namespace quillery {

namespace {

// Sync tools write a journal under a hidden or temporary name first; those are not journals yet.
bool isJournalName(const QString& name) {
    return name.endsWith(QStringLiteral(".journal")) && !name.startsWith(QLatin1Char('.')) &&
           !name.startsWith(QLatin1Char('~'));
}

} // namespace

PackageWatcher::PackageWatcher(QString packagePath, QObject* parent)
    : QObject(parent)
    , m_packagePath(std::move(packagePath)) {
    m_settle.setSingleShot(true);
    m_settle.setInterval(kSettleDelay);
    m_poll.setInterval(kPollInterval);
    connect(&m_settle, &QTimer::timeout, this, &PackageWatcher::check);
    connect(&m_poll, &QTimer::timeout, this, &PackageWatcher::check);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_settle,
            qOverload<>(&QTimer::start));
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_settle, qOverload<>(&QTimer::start));
    m_seen = scan();
    watchPaths(m_seen);
}

void PackageWatcher::markSeen(const QStringList& journals) {
    const Snapshot now = scan();
    for (const QString& name : journals) {
        if (const auto found = now.find(name); found != now.end())
            m_seen[name] = found->second;
    }
}

void PackageWatcher::checkNow() {
    m_settle.stop();
    check();
}

PackageWatcher::Snapshot PackageWatcher::scan() const {
    Snapshot journals;
    const QStringList names = QDir(m_packagePath).entryList(QDir::Files | QDir::Hidden);
    for (const QString& name : names) {
        struct stat status {};
        const QByteArray path = QFile::encodeName(m_packagePath + QLatin1Char('/') + name);
        if (!isJournalName(name) || ::stat(path.constData(), &status) != 0)
            continue;
        journals[name] = {status.st_ino, status.st_size,
                          status.st_mtim.tv_sec * 1'000'000'000LL + status.st_mtim.tv_nsec};
    }
    return journals;
}

void PackageWatcher::watchPaths(const Snapshot& journals) {
    // A journal replaced by a rename is a new file: its old watch is gone, so watch it again.
    QStringList paths{m_packagePath};
    for (const auto& [name, identity] : journals)
        paths.append(m_packagePath + QLatin1Char('/') + name);
    const QStringList watched = m_watcher.files() + m_watcher.directories();
    for (const QString& path : paths) {
        if (!watched.contains(path))
            m_watcher.addPath(path);
    }
    // Without a watch on the folder, new journals would go unnoticed.
    if (!m_watcher.directories().contains(m_packagePath))
        m_poll.start();
    else
        m_poll.stop();
}

void PackageWatcher::check() {
    const Snapshot now = scan();
    watchPaths(now);
    QStringList changed;
    for (const auto& [name, identity] : now) {
        const auto seen = m_seen.find(name);
        if (seen == m_seen.end() || seen->second != identity)
            changed.append(name);
    }
    m_seen = now;
    if (!changed.isEmpty())
        emit journalsChanged(changed);
}

} // namespace quillery
