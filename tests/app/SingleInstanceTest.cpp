#include "app/SingleInstance.h"

#include "QtPrinters.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtConcurrent/QtConcurrentRun>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace quillery {
namespace {

// What a start finds at the socket path before it, and whether it then serves later starts.
struct Leftover {
    const char* name;
    void (*make)(const QString& path);
};

class SingleInstanceTest : public ::testing::TestWithParam<Leftover> {
protected:
    QString socketPath() const { return m_directory.filePath(QStringLiteral("app.socket")); }

    // A later start in a process of its own, as far as this one's event loop is concerned.
    SingleInstance::Start startElsewhere(const QStringList& arguments) const {
        QFuture<SingleInstance::Start> later = QtConcurrent::run(
            [path = socketPath(), arguments] { return SingleInstance(path).start(arguments); });
        EXPECT_TRUE(QTest::qWaitFor([&] { return later.isFinished(); }));
        return later.result();
    }

    QTemporaryDir m_directory;
};

TEST_P(SingleInstanceTest, TheFirstStartServesAndALaterOneHandsItsArgumentsOver) {
    GetParam().make(socketPath());
    SingleInstance first(socketPath());
    QStringList received;
    QObject::connect(&first, &SingleInstance::argumentsReceived,
                     [&received](const QStringList& arguments) { received = arguments; });

    ASSERT_EQ(first.start({}), SingleInstance::Start::First);
    const QStringList packages{QStringLiteral("/notes/Trip.quillery"), QStringLiteral("/b c")};
    EXPECT_EQ(startElsewhere(packages), SingleInstance::Start::HandedOff);

    EXPECT_TRUE(QTest::qWaitFor([&] { return !received.isEmpty(); }));
    EXPECT_EQ(received, packages);
}

INSTANTIATE_TEST_SUITE_P(
    AtTheSocketPath, SingleInstanceTest,
    ::testing::Values(Leftover{"Nothing",
                               [](const QString&) {
                               }},
                      // The socket of an app that crashed: bound, nobody listening.
                      Leftover{"SocketOfACrashedApp",
                               [](const QString& path) {
                                   sockaddr_un address{};
                                   address.sun_family = AF_UNIX;
                                   const QByteArray name = QFile::encodeName(path);
                                   std::copy(name.begin(), name.end(), address.sun_path);
                                   const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
                                   ASSERT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&address),
                                                  sizeof address),
                                             0);
                                   close(fd);
                               }}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

} // namespace
} // namespace quillery
