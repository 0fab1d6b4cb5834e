#include "QtPrinters.h"
#include "app/AppFixture.h"
#include "app/MessageBar.h"
#include "navigation/ColumnRow.h"

#include <QApplication>
#include <QPointer>
#include <QScreen>
#include <QTest>

namespace quillery {
namespace {

// What a start brings back of the windows open when the app last ended.
class DocumentControllerSessionTest : public AppFixture {
protected:
    // The app started again: a new controller over the same settings.
    std::unique_ptr<DocumentController> restart() {
        return std::make_unique<DocumentController>(preferences, codec, prompts);
    }

    static std::vector<std::filesystem::path> locations(const DocumentController& started) {
        std::vector<std::filesystem::path> open;
        for (const DocumentWindow* window : started.windows())
            open.push_back(window->document().fileLocation().value_or(""));
        return open;
    }
};

TEST_F(DocumentControllerSessionTest, QuittingBringsTheOpenNotebooksBackInOrderButNotUntitledOnes) {
    const auto trip = makePackage("Trip.quillery", {"Flights"});
    const auto home = makePackage("Home.quillery", {"Roof"});
    controller.openDocument(trip);
    controller.openDocument(home);
    controller.newDocument();

    controller.quit();
    ASSERT_TRUE(QTest::qWaitFor([&] { return controller.windows().empty(); }));

    auto started = restart();
    EXPECT_EQ(started->restoreSession(), 2u);
    EXPECT_EQ(locations(*started), (std::vector{trip, home}));
}

TEST_F(DocumentControllerSessionTest, AWindowClosedWhileOthersStayIsGoneButTheLastOneComesBack) {
    const auto trip = makePackage("Trip.quillery", {"Flights"});
    const auto home = makePackage("Home.quillery", {"Roof"});
    DocumentWindow* first = controller.openDocument(trip);
    DocumentWindow* second = controller.openDocument(home);
    first->close();
    EXPECT_EQ(controller.session().openNotebooks(),
              QStringList{QString::fromStdString(home.string())});
    second->close();

    auto started = restart();
    EXPECT_EQ(started->restoreSession(), 1u);
    EXPECT_EQ(locations(*started), std::vector{home});
}

TEST_F(DocumentControllerSessionTest, AQuitTheUserStopsKeepsEveryWindowAndTheSession) {
    const auto trip = makePackage("Trip.quillery", {"Flights"});
    controller.openDocument(trip);
    addNote(*controller.newDocument(), "unsaved");
    prompts.saveChoice = DocumentPrompts::SaveChoice::Cancel;

    controller.quit();
    QApplication::processEvents();

    EXPECT_EQ(controller.windows().size(), 2u);
    auto started = restart();
    EXPECT_EQ(started->restoreSession(), 1u);
    EXPECT_EQ(locations(*started), std::vector{trip});
}

TEST_F(DocumentControllerSessionTest, NotebooksGoneSinceAreSkippedWithoutAWord) {
    const auto trip = makePackage("Trip.quillery", {"Flights"});
    const auto home = makePackage("Home.quillery", {"Roof"});
    controller.session().setOpenNotebooks(
        {QString::fromStdString(trip.string()), QString::fromStdString(home.string())});
    std::filesystem::remove_all(trip);

    EXPECT_EQ(controller.restoreSession(), 1u);
    EXPECT_EQ(locations(controller), std::vector{home});
    EXPECT_TRUE(prompts.warnings.empty());
    EXPECT_EQ(controller.session().openNotebooks(),
              QStringList{QString::fromStdString(home.string())});
}

// With and without another notebook to bring back: the first window says why.
TEST_F(DocumentControllerSessionTest, ANotebookWhoseOpenEndedTheAppIsNotOpenedAgain) {
    const QString trip = QString::fromStdString(makePackage("Trip.quillery", {"Flights"}).string());
    const QString home = QString::fromStdString(makePackage("Home.quillery", {"Roof"}).string());
    for (const QStringList& open : {QStringList{trip, home}, QStringList{trip}}) {
        controller.session().setOpenNotebooks(open);
        controller.session().setNotebookBeingOpened(trip);
        auto started = restart();
        EXPECT_EQ(started->restoreSession(), open.size() - 1);
        DocumentWindow* first =
            started->windows().empty() ? started->newDocument() : started->windows().front();
        EXPECT_TRUE(first->messageBar()->isVisible());
        EXPECT_TRUE(first->messageBar()->text().contains(QStringLiteral("“Trip”")));
        EXPECT_TRUE(started->session().notebookBeingOpened().isEmpty());
    }
}

TEST_F(DocumentControllerSessionTest, ANotebookSavedUnderANewNameComesBackUnderIt) {
    DocumentWindow* window = controller.newDocument();
    addNote(*window, "draft");
    prompts.saveLocation = path("Draft.quillery");

    ASSERT_TRUE(window->saveAs());

    EXPECT_EQ(controller.session().openNotebooks(),
              QStringList{QString::fromStdString(path("Draft.quillery").string())});
}

TEST_F(DocumentControllerSessionTest,
       ANotebookOpensWhereItsWindowWasWithItsColumnWidthsAndNewWindowsTakeTheLastSizeThatFits) {
    const auto trip = makePackage("Trip.quillery", {"Flights"});
    DocumentWindow* window = controller.openDocument(trip);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    const QRect place(40, 60, 700, 500);
    window->setGeometry(place);
    window->columnRow()->chooseWidth(0, 250);
    window->close();

    DocumentWindow* reopened = controller.openDocument(trip);
    EXPECT_EQ(reopened->geometry(), place);
    EXPECT_EQ(reopened->columnRow()->chosenWidths(), std::vector<int>{250});
    reopened->resize(600, 400);
    reopened->close();
    DocumentWindow* next = controller.newDocument();
    EXPECT_EQ(next->size(), QSize(600, 400));

    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    next->setGeometry(screen.x() + 100, screen.y() + 100, screen.width() * 2, screen.height() * 2);
    next->close();
    // A new window is placed by the window manager, the notebook's by its own place.
    EXPECT_TRUE(screen.size().expandedTo(controller.newDocument()->size()) == screen.size());
    reopened = controller.openDocument(trip);
    EXPECT_TRUE(screen.contains(reopened->geometry()));
}

} // namespace
} // namespace quillery
