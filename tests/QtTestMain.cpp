#include "OpenedUrls.h"

#include <QApplication>
#include <QDesktopServices>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quillery::testing {

std::vector<QUrl>& openedUrls() {
    static std::vector<QUrl> urls;
    return urls;
}

namespace {

class UrlRecorder : public QObject {
    Q_OBJECT

public slots:
    void open(const QUrl& url) { openedUrls().push_back(url); }
};

const QStringList& schemes() {
    static const QStringList all{QStringLiteral("file"), QStringLiteral("http"),
                                 QStringLiteral("https"), QStringLiteral("mailto")};
    return all;
}

void takeUrls(bool take) {
    static UrlRecorder desktop;
    for (const QString& scheme : schemes()) {
        if (take)
            QDesktopServices::setUrlHandler(scheme, &desktop, "open");
        else
            QDesktopServices::unsetUrlHandler(scheme);
    }
}

} // namespace

// The offscreen platform opens nothing itself: without the handlers every openUrl fails.
NoProgramOpensUrls::NoProgramOpensUrls() {
    takeUrls(false);
}

NoProgramOpensUrls::~NoProgramOpensUrls() {
    takeUrls(true);
}

} // namespace quillery::testing

// The widget tests' entry point: one QApplication for the whole run, on the "offscreen" platform.
// Each run gets configuration, data and cache directories of its own, so the user's settings are
// never touched and test programs that CTest runs side by side never see each other's settings or
// recent files. Test discovery starts the program outside CTest's environment, so the platform is
// set here too. Addresses opened go to openedUrls().
int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir home;
    for (const char* variable :
         {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"}) {
        qputenv(variable, (home.path() + QLatin1Char('/') + QLatin1String(variable)).toUtf8());
    }
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("QuilleryTests"));
    QApplication::setApplicationName(QStringLiteral("QuilleryTests"));
    quillery::testing::takeUrls(true);
    testing::InitGoogleTest(&argc, argv);
    const int failed = RUN_ALL_TESTS();
    quillery::testing::takeUrls(false);
    return failed;
}

#include "QtTestMain.moc"
