#include <QApplication>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// One QApplication for the run; settings (the recent list) go to a directory of the test's own.
int main(int argc, char** argv) {
    // Test discovery runs the program outside the test environment, where there may be no display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QStandardPaths::setTestModeEnabled(true);
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("QuilleryTests"));
    QApplication::setApplicationName(QStringLiteral("QuilleryTests"));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
