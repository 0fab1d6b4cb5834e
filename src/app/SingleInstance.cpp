#include "app/SingleInstance.h"

#include <QDataStream>
#include <QDir>
#include <QLocalSocket>
#include <QLockFile>
#include <QStandardPaths>

#include <unistd.h>

namespace quillery {

namespace {

constexpr int kConnectTimeoutMs = 1000;
// The running app answers from its event loop, which a dialog it shows keeps turning.
constexpr int kAnswerTimeoutMs = 10000;
constexpr char kReceived = '\1';

} // namespace

SingleInstance::SingleInstance(QString socketPath, QObject* parent)
    : QObject(parent)
    , m_socketPath(std::move(socketPath)) {
    // Only this user may hand the app notebooks to open.
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::serveConnection);
}

QString SingleInstance::defaultSocketPath() {
    // The runtime directory is the user's own; Qt falls back to a per-user one under /tmp.
    QString directory = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (directory.isEmpty())
        directory = QDir::tempPath();
    return directory + QStringLiteral("/quillery-%1.socket").arg(getuid());
}

SingleInstance::Start SingleInstance::start(const QStringList& arguments) {
    QLockFile lock(m_socketPath + QStringLiteral(".lock"));
    // Held until this start has either handed off or listens; the lock of a start that died is
    // taken over at once (its process is gone), whatever its age.
    lock.setStaleLockTime(0);
    lock.tryLock(kAnswerTimeoutMs);
    QLocalSocket socket;
    socket.connectToServer(m_socketPath);
    if (socket.waitForConnected(kConnectTimeoutMs))
        return handOff(socket, arguments) ? Start::HandedOff : Start::NoAnswer;
    // Nobody listens: whatever is at the path is left over from an app that ended badly.
    QLocalServer::removeServer(m_socketPath);
    m_server.listen(m_socketPath);
    return Start::First;
}

bool SingleInstance::handOff(QLocalSocket& socket, const QStringList& arguments) {
    QByteArray message;
    QDataStream stream(&message, QIODevice::WriteOnly);
    stream << arguments;
    socket.write(message);
    if (!socket.waitForBytesWritten(kConnectTimeoutMs))
        return false;
    while (socket.bytesAvailable() == 0 && socket.waitForReadyRead(kAnswerTimeoutMs)) {
    }
    return socket.read(1) == QByteArray(1, kReceived);
}

void SingleInstance::serveConnection() {
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            QDataStream stream(socket);
            stream.startTransaction();
            QStringList arguments;
            stream >> arguments;
            if (!stream.commitTransaction())
                return;
            // Answered first: opening may show a dialog, and the other start need not wait.
            socket->write(QByteArray(1, kReceived));
            socket->flush();
            socket->disconnectFromServer();
            emit argumentsReceived(arguments);
        });
    }
}

} // namespace quillery
