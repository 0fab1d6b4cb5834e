#include "QtPrinters.h"
#include "app/AppFixture.h"

#include <QApplication>
#include <QPointer>
#include <QTest>

#include <algorithm>
#include <fstream>

namespace quillery {
namespace {

using DocumentControllerTest = AppFixture;

TEST_F(DocumentControllerTest, ANewNotebookIsUntitledAndShowsTheRootColumn) {
    DocumentWindow* window = controller.newDocument();

    ASSERT_EQ(controller.windows().size(), 1u);
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Untitled[*]"));
    EXPECT_FALSE(window->isWindowModified());
    NoteColumn* first = window->columnRow()->column(0);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->representedNode(), window->document().rootNode());

    EXPECT_EQ(controller.newDocument()->displayName(), QStringLiteral("Untitled 2"));
}

TEST_F(DocumentControllerTest, OpeningAPackageShowsItsNotesUnderItsName) {
    const auto location = makePackage("Trip.quillery", {"Flights", "Hotels", "Packing"});

    DocumentWindow* window = controller.openDocument(location);

    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->displayName(), QStringLiteral("Trip"));
    EXPECT_EQ(rowCount(window->columnRow()->column(0)), 3);
    EXPECT_TRUE(prompts.warnings.empty());
    EXPECT_EQ(controller.recentDocuments().paths().value(0),
              QString::fromStdString(location.string()));
}

TEST_F(DocumentControllerTest, AnUntouchedUntitledNotebookMakesWayForTheOneOpened) {
    QPointer<DocumentWindow> untouched = controller.newDocument();
    QPointer<DocumentWindow> written = controller.newDocument();
    addNote(*written, "draft");
    prompts.saveChoice = DocumentPrompts::SaveChoice::Cancel;

    controller.openDocument(makePackage("Trip.quillery", {"Flights"}));

    EXPECT_TRUE(QTest::qWaitFor([&] { return untouched.isNull(); }));
    EXPECT_FALSE(written.isNull());
    EXPECT_TRUE(prompts.savePromptsFor.empty());
}

TEST_F(DocumentControllerTest, OpeningAnOpenPackageAgainReusesItsWindow) {
    const auto location = makePackage("Trip.quillery", {"Flights"});
    DocumentWindow* first = controller.openDocument(location);
    EXPECT_EQ(controller.openDocument(location), first);
    EXPECT_EQ(controller.windows().size(), 1u);
}

TEST_F(DocumentControllerTest, AFileInsideAPackageOpensThePackage) {
    const auto location = makePackage("Trip.quillery", {"Flights"});
    const auto journal = location / (preferences.string(kClientIdentifierKey).value() + ".journal");

    DocumentWindow* window = controller.openDocument(journal);

    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->document().fileLocation(), location);
}

// Every way an open can fail: a warning naming the notebook and the reason, and no window.
struct FailedOpen {
    const char* name;
    void (*prepare)(const std::filesystem::path& location);

    friend void PrintTo(const FailedOpen& failedOpen, std::ostream* out) {
        *out << failedOpen.name;
    }
};

class FailedOpenTest : public AppFixture, public ::testing::WithParamInterface<FailedOpen> {};

TEST_P(FailedOpenTest, ShowsTheReasonAndOpensNothing) {
    const auto location = path("Broken.quillery");
    GetParam().prepare(location);

    EXPECT_EQ(controller.openDocument(location), nullptr);

    EXPECT_TRUE(controller.windows().empty());
    ASSERT_EQ(prompts.warnings.size(), 1u);
    EXPECT_TRUE(prompts.warnings[0].text.contains(QStringLiteral("Broken")));
    EXPECT_FALSE(prompts.warnings[0].details.isEmpty());
    EXPECT_TRUE(controller.recentDocuments().paths().isEmpty());
}

void writeFile(const std::filesystem::path& file, const std::string& content) {
    std::ofstream(file) << content;
}

INSTANTIATE_TEST_SUITE_P(Packages, FailedOpenTest,
                         ::testing::Values(FailedOpen{"Missing",
                                                      [](const std::filesystem::path&) {
                                                      }},
                                           FailedOpen{"PlainFile",
                                                      [](const std::filesystem::path& at) {
                                                          writeFile(at, "notes");
                                                      }},
                                           FailedOpen{"JournalNotJson",
                                                      [](const std::filesystem::path& at) {
                                                          std::filesystem::create_directories(at);
                                                          writeFile(at / "A.journal", "{ not json");
                                                      }},
                                           FailedOpen{"JournalWithoutDiffs",
                                                      [](const std::filesystem::path& at) {
                                                          std::filesystem::create_directories(at);
                                                          writeFile(
                                                              at / "A.journal",
                                                              R"({"schema": "1.0", "diffs": 3})");
                                                      }}),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

TEST_F(DocumentControllerTest, ClosingAllClosesNoneWhenTheUserKeepsOne) {
    controller.openDocument(makePackage("Kept.quillery", {"a"}));
    DocumentWindow* untitled = controller.newDocument();
    addNote(*untitled, "unsaved");

    prompts.saveChoice = DocumentPrompts::SaveChoice::Cancel;
    EXPECT_FALSE(controller.closeAll());
    QApplication::processEvents();
    EXPECT_EQ(controller.windows().size(), 2u);
    EXPECT_TRUE(std::ranges::all_of(
        controller.windows(), [](const DocumentWindow* window) { return window->isVisible(); }));
    EXPECT_EQ(prompts.savePromptsFor, std::vector<QString>{QStringLiteral("Untitled")});

    prompts.saveChoice = DocumentPrompts::SaveChoice::Discard;
    EXPECT_TRUE(controller.closeAll());
    EXPECT_TRUE(QTest::qWaitFor([&] { return controller.windows().empty(); }));
}

TEST_F(DocumentControllerTest, AFolderThatIsNoNotebookIsNamedSoAndLeftAlone) {
    const auto folder = path("Photos");
    std::filesystem::create_directories(folder);
    writeFile(folder / "beach.txt", "sand");

    EXPECT_EQ(controller.openDocument(folder), nullptr);

    ASSERT_EQ(prompts.warnings.size(), 1u);
    EXPECT_TRUE(prompts.warnings[0].details.contains(QStringLiteral("is not a Quillery notebook")));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
}

// A notebook of 10,000 notes opens and its first column shows them.
TEST_F(DocumentControllerTest, ALargeNotebookOpensWithItsFirstColumn) {
    std::vector<std::string> texts;
    for (int i = 0; i < 10000; ++i) {
        texts.push_back("Note number " + std::to_string(i) + " with *some* **styling**");
    }
    const auto location = makePackage("Large.quillery", texts);

    DocumentWindow* window = controller.openDocument(location);

    ASSERT_NE(window, nullptr);
    NoteColumn* first = window->columnRow()->column(0);
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window));
    EXPECT_TRUE(first->isVisible());
    EXPECT_EQ(rowCount(first), 10000);
}

} // namespace
} // namespace quillery
