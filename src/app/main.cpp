#include "app/AppDelegate.h"
#include "app/AppInfo.h"
#include "app/DialogPrompts.h"
#include "app/DocumentController.h"
#include "app/QtPictureCodec.h"
#include "document/JsonFilePreferences.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>

// quillery [PACKAGE…]: opens each notebook package in its own window. Without packages it brings
// back the notebooks open when it last ended, or a new untitled notebook when there are none.
// Exits with an error when every package given failed to open.
int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    Q_INIT_RESOURCE(resources);
    QApplication::setApplicationName(QStringLiteral("Quillery"));
    QApplication::setApplicationDisplayName(QStringLiteral("Quillery"));
    QApplication::setOrganizationName(QStringLiteral("Quillery"));
    QApplication::setApplicationVersion(quillery::AppInfo::version());
    QApplication::setDesktopFileName(QStringLiteral("org.quillery.Quillery"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("org.quillery.Quillery"),
                                                 QIcon(QStringLiteral(":/quillery.png"))));

    QCommandLineParser parser;
    parser.setApplicationDescription(QApplication::translate("main", "A note outliner."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(
        QStringLiteral("package"),
        QApplication::translate("main", "Notebooks (NAME.quillery) to open."),
        QStringLiteral("[PACKAGE…]"));
    parser.process(app);

    quillery::JsonFilePreferences preferences;
    quillery::QtPictureCodec codec;
    quillery::DialogPrompts prompts;
    quillery::DocumentController controller(preferences, codec, prompts);
    quillery::AppDelegate appDelegate;
    appDelegate.setNewDocumentHandler([&controller] { controller.newDocument(); });
    controller.setAppDelegate(&appDelegate);

    const QStringList packages = parser.positionalArguments();
    for (const QString& package : packages) {
        controller.openDocument(package.toStdString());
    }
    if (packages.isEmpty() && controller.restoreSession() == 0) {
        controller.newDocument();
    }
    if (controller.windows().empty()) {
        return 1;
    }
    return app.exec();
}
