#include "app/PackageWatcher.h"

#include "QtPrinters.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace quillery {
namespace {

// Something another writer (or this process) does to the package, and what the watcher reports.
struct PackageChange {
    const char* name;
    void (*act)(const QDir& package, PackageWatcher& watcher);
    QStringList reported;
};

void write(const QDir& package, const QString& name, const QByteArray& bytes) {
    QFile file(package.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

class PackageWatcherTest : public ::testing::TestWithParam<PackageChange> {
protected:
    PackageWatcherTest() {
        write(package, QStringLiteral("A.journal"), "{}");
        write(package, QStringLiteral("B.journal"), "{}");
    }

    QTemporaryDir m_directory;
    QDir package{m_directory.path()};
};

TEST_P(PackageWatcherTest, ReportsTheJournalsWhoseContentChanged) {
    PackageWatcher watcher(package.path());
    QSignalSpy spy(&watcher, &PackageWatcher::journalsChanged);

    GetParam().act(package, watcher);

    if (GetParam().reported.isEmpty()) {
        watcher.checkNow();
        EXPECT_EQ(spy.count(), 0);
    } else {
        ASSERT_TRUE(spy.wait(2000));
        EXPECT_EQ(spy.at(0).at(0).toStringList(), GetParam().reported);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Changes, PackageWatcherTest,
    ::testing::Values(PackageChange{"NewJournal",
                                    [](const QDir& package, PackageWatcher&) {
                                        write(package, QStringLiteral("C.journal"), "{}");
                                    },
                                    {QStringLiteral("C.journal")}},
                      PackageChange{"SyncToolsTemporaryFiles",
                                    [](const QDir& package, PackageWatcher&) {
                                        write(package, QStringLiteral(".syncthing.C.journal.tmp"),
                                              "{");
                                        write(package, QStringLiteral("~C.journal"), "{");
                                        write(package, QStringLiteral("C.journal.part"), "{");
                                    },
                                    {}},
                      PackageChange{"OwnWriteMarkedSeen",
                                    [](const QDir& package, PackageWatcher& watcher) {
                                        write(package, QStringLiteral("A.journal"),
                                              "{\"diffs\": []}");
                                        watcher.markSeen({QStringLiteral("A.journal")});
                                    },
                                    {}}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

} // namespace
} // namespace quillery
