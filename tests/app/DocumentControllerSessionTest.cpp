#include "QtPrinters.h"
#include "app/AppFixture.h"
#include "app/MessageBar.h"
#include "navigation/ColumnRow.h"

#include <QApplication>
#include <QPointer>
#include <QScreen>
#include <QTest>

#include <algorithm>

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

// A quit or a Close All stopped at an unsaved notebook keeps every window and the session.
TEST_F(DocumentControllerSessionTest, AQuitOrCloseAllTheUserStopsKeepsEveryWindowAndTheSession) {
    const auto trip = makePackage("Trip.quillery", {"Flights"});
    controller.openDocument(trip);
    addNote(*controller.newDocument(), "unsaved");
    prompts.saveChoice = DocumentPrompts::SaveChoice::Cancel;

    controller.quit();
    EXPECT_FALSE(controller.closeAll());
    QApplication::processEvents();

    EXPECT_EQ(controller.windows().size(), 2u);
    EXPECT_TRUE(std::ranges::all_of(
        controller.windows(), [](const DocumentWindow* window) { return window->isVisible(); }));
    EXPECT_EQ(prompts.savePromptsFor.size(), 2u);
    {
        auto started = restart();
        EXPECT_EQ(started->restoreSession(), 1u);
        EXPECT_EQ(locations(*started), std::vector{trip});
    }
    prompts.saveChoice = DocumentPrompts::SaveChoice::Discard;
    EXPECT_TRUE(controller.closeAll());
    EXPECT_TRUE(QTest::qWaitFor([&] { return controller.windows().empty(); }));
}

// Trip is passed over at start: gone since, without a word; or its open ended the app last time,
// which the first window (a new one when nothing else comes back) says. Home comes back when it
// was open.
TEST_F(DocumentControllerSessionTest, NotebooksGoneOrWhoseOpenEndedTheAppArePassedOver) {
    const auto trip = makePackage("Trip.quillery", {"Flights"});
    const QString home = QString::fromStdString(makePackage("Home.quillery", {"Roof"}).string());
    const QString tripPath = QString::fromStdString(trip.string());
    for (const auto& [gone, open] : {std::pair{true, QStringList{tripPath, home}},
                                     {false, QStringList{tripPath, home}},
                                     {false, QStringList{tripPath}}}) {
        controller.session().setOpenNotebooks(open);
        controller.session().setNotebookBeingOpened(gone ? QString() : tripPath);
        const auto kept = trip.string() + ".kept";
        if (gone)
            std::filesystem::rename(trip, kept);
        auto started = restart();
        EXPECT_EQ(started->restoreSession(), open.size() - 1);
        if (gone)
            std::filesystem::rename(kept, trip);
        EXPECT_EQ(started->session().openNotebooks(), QStringList(open.mid(1)));
        DocumentWindow* first =
            started->windows().empty() ? started->newDocument() : started->windows().front();
        EXPECT_EQ(first->messageBar()->isVisible(), !gone);
        EXPECT_EQ(first->messageBar()->text().contains(QStringLiteral("“Trip”")), !gone);
        EXPECT_TRUE(started->session().notebookBeingOpened().isEmpty());
    }
    EXPECT_TRUE(prompts.warnings.empty());
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
