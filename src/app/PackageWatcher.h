#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <map>

namespace quillery {

// Watches one notebook package for journals that other writers change: another process of this
// installation, or a sync tool bringing another machine's work. Events are gathered for a short
// while (a sync tool writes a journal in several steps), then the journals are compared with
// what was last seen, so that only a real change of content is reported. Where the folder cannot
// be watched it is looked at periodically instead.
class PackageWatcher : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kSettleDelay{200};
    static constexpr std::chrono::milliseconds kPollInterval{2000};

    // The journals there now count as seen.
    explicit PackageWatcher(QString packagePath, QObject* parent = nullptr);

    const QString& packagePath() const { return m_packagePath; }
    // The journals (names inside the package) count as seen as they are now: after this process
    // wrote or read them. The others stay as last seen, so a change to them is still reported.
    void markSeen(const QStringList& journals);
    // Looks at the package at once rather than waiting for an event.
    void checkNow();

signals:
    // Names (inside the package) of journals that appeared or changed since last seen.
    void journalsChanged(const QStringList& journals);

private:
    // What tells one version of a file from the next without reading it.
    struct FileIdentity {
        std::uint64_t inode = 0;
        std::int64_t size = 0;
        std::int64_t modifiedNs = 0;
        bool operator==(const FileIdentity&) const = default;
    };
    using Snapshot = std::map<QString, FileIdentity>;

    Snapshot scan() const;
    void watchPaths(const Snapshot& journals);
    void check();

    QString m_packagePath;
    QFileSystemWatcher m_watcher;
    QTimer m_settle;
    QTimer m_poll;
    Snapshot m_seen;
};

} // namespace quillery
