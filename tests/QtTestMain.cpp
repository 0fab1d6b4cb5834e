#include <QApplication>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// The widget tests' entry point: one QApplication for the whole run, on the "offscreen" platform,
// with test paths and a configuration directory of the run's own so the user's settings are never
// touched. Test discovery starts the program outside CTest's environment, so the platform is set
// here too.
int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("QuilleryTests"));
    QApplication::setApplicationName(QStringLiteral("QuilleryTests"));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
