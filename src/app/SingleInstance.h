#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>
#include <QStringList>

class QLocalSocket;

namespace quillery {

// Keeps one app process per user. The first start serves a local socket; a later start hands
// its arguments over that socket to the running app and ends, so that two processes never edit
// one notebook side by side.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    enum class Start {
        // This process is the app: it serves later starts.
        First,
        // The running app took the arguments; this process has nothing more to do.
        HandedOff,
        // An app holds the socket but did not answer in time.
        NoAnswer,
    };

    // socketPath is where the socket lives; tests give each instance one of its own.
    explicit SingleInstance(QString socketPath, QObject* parent = nullptr);

    // The user's socket in the runtime directory.
    static QString defaultSocketPath();

    // Hands the arguments to a running app, or else becomes the one that serves. A socket left
    // by an app that crashed is replaced. A lock file beside the socket keeps two starts at the
    // same moment from both becoming the app.
    Start start(const QStringList& arguments);

    const QString& socketPath() const { return m_socketPath; }

signals:
    // A later start's arguments, once it has been told they arrived.
    void argumentsReceived(const QStringList& arguments);

private:
    bool handOff(QLocalSocket& socket, const QStringList& arguments);
    void serveConnection();

    QString m_socketPath;
    QLocalServer m_server;
};

} // namespace quillery
