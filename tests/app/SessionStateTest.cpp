#include "app/SessionState.h"

#include "QtPrinters.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

class SessionStateTest : public ::testing::Test {
protected:
    SessionStateTest() { session.clear(); }
    ~SessionStateTest() override { session.clear(); }

    SessionState session;
};

TEST_F(SessionStateTest, KeepsTheLatestPlaceOfEachNotebookUpToTheLimit) {
    const auto name = [](std::size_t i) {
        return QStringLiteral("/notes/%1.quillery").arg(i);
    };
    for (std::size_t i = 0; i <= SessionState::kMaximumPlaces; ++i)
        session.setWindowGeometry(name(i), QByteArray::number(static_cast<qulonglong>(i)));
    session.setWindowGeometry(name(5), "moved");

    EXPECT_TRUE(session.windowGeometry(name(0)).isEmpty());
    EXPECT_EQ(session.windowGeometry(name(1)), "1");
    EXPECT_EQ(session.windowGeometry(name(5)), "moved");
    EXPECT_EQ(session.windowGeometry(name(SessionState::kMaximumPlaces)),
              QByteArray::number(static_cast<qulonglong>(SessionState::kMaximumPlaces)));
}

TEST_F(SessionStateTest, PathsWithSettingsSeparatorsAreKeptAsTheyAre) {
    const QString path = QStringLiteral("/home/a b/[x]=;#,\\/ünïcödé.quillery");
    session.setWindowGeometry(path, "g");
    session.setOpenNotebooks({path});

    EXPECT_EQ(session.windowGeometry(path), "g");
    EXPECT_EQ(session.openNotebooks(), QStringList{path});
    EXPECT_TRUE(session.windowGeometry(QStringLiteral("/home/a b")).isEmpty());
}

} // namespace
} // namespace quillery
