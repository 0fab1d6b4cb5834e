#include "app/AppCommands.h"
#include "app/AppInfo.h"
#include "app/DialogPrompts.h"
#include "app/DocumentController.h"
#include "app/QtPictureCodec.h"
#include "app/SingleInstance.h"
#include "storage/JsonFilePreferences.h"
#include "storage/PosixFileSystem.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QIcon>
#include <QWidget>

// quillery [PACKAGE…]: opens each notebook package in its own window. Without packages it brings
// back the notebooks open when it last ended, or a new untitled notebook when there are none.
// Exits with an error when every package given failed to open. While the app runs, a later start
// hands its packages to it and exits with 0.
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

    // Made absolute here: the running app may have started in another directory.
    QStringList packages;
    for (const QString& package : parser.positionalArguments())
        packages.append(QFileInfo(package).absoluteFilePath());
    quillery::SingleInstance instance(quillery::SingleInstance::defaultSocketPath());
    switch (instance.start(packages)) {
    case quillery::SingleInstance::Start::HandedOff:
        return 0;
    case quillery::SingleInstance::Start::NoAnswer:
        qCritical("Quillery is already running but does not answer.");
        return 1;
    case quillery::SingleInstance::Start::First:
        break;
    }

    quillery::PosixFileSystem files;
    quillery::JsonFilePreferences preferences(files);
    quillery::QtPictureCodec codec;
    quillery::DialogPrompts prompts;
    quillery::DocumentController controller(preferences, codec, prompts);
    quillery::AppCommands appCommands;
    QObject::connect(&appCommands, &quillery::AppCommands::newNotebookRequested, &controller,
                     &quillery::DocumentController::newDocument);
    QObject::connect(&appCommands, &quillery::AppCommands::addressNotOpened, &controller,
                     [&prompts](QWidget* parent, const QString& text, const QString& details) {
                         prompts.warn(parent, text, details);
                     });
    controller.setAppCommands(&appCommands);
    QObject::connect(&instance, &quillery::SingleInstance::argumentsReceived, &controller,
                     &quillery::DocumentController::openForAnotherStart);

    for (const QString& package : packages)
        controller.openDocument(package.toStdString());
    if (packages.isEmpty() && controller.restoreSession() == 0)
        controller.newDocument();
    if (controller.windows().empty())
        return 1;
    return app.exec();
}
