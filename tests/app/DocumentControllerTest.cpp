#include "app/DocumentController.h"

#include "app/AppFixture.h"

#include <QPointer>

#include <fstream>

namespace quillery {
namespace {

using DocumentControllerTest = AppFixture;

TEST_F(DocumentControllerTest, NewNotebooksAreNumberedUntitledAndShowTheRootColumn) {
    DocumentWindow* window = controller.newDocument();
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Untitled[*]"));
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_EQ(window->columnRow()->column(0)->parentNote(), window->document().rootNode());
    EXPECT_EQ(controller.newDocument()->displayName(), QStringLiteral("Untitled 2"));
}

TEST_F(DocumentControllerTest, APackageOpensOnceUnderItsNameAlsoFromAFileInsideIt) {
    const auto location = makePackage("Trip.quillery", {"Flights", "Hotels", "Packing"});
    DocumentWindow* window = controller.openDocument(location);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->displayName(), QStringLiteral("Trip"));
    EXPECT_EQ(rowCount(window->columnRow()->column(0)), 3);
    EXPECT_EQ(controller.recentDocuments().paths(),
              QStringList{QString::fromStdString(location.string())});
    const auto journal = location / (preferences.string(kClientIdentifierKey).value() + ".journal");
    EXPECT_EQ(controller.openDocument(journal), window);
    EXPECT_EQ(controller.windows().size(), 1u);
    EXPECT_TRUE(prompts.warnings.empty());
}

TEST_F(DocumentControllerTest, AnUntouchedUntitledNotebookMakesWayForTheOneOpened) {
    QPointer<DocumentWindow> untouched = controller.newDocument();
    QPointer<DocumentWindow> written = controller.newDocument();
    addNote(*written, "draft");
    controller.openDocument(makePackage("Trip.quillery", {"Flights"}));
    EXPECT_TRUE(QTest::qWaitFor([&] { return untouched.isNull(); }));
    EXPECT_FALSE(written.isNull());
    EXPECT_TRUE(prompts.savePromptsFor.empty());
}

// Every way an open can fail: a warning naming the notebook and the reason, no window, nothing
// written, and nothing added to Open Recent.
struct FailedOpen {
    const char* name;
    const char* at;
    const char* file;    // made at the path: nothing (""), a file ("."), or one in a folder there
    const char* content; // of that file; "3 GiB": that many bytes, none of them written
    const char* reason;  // a part of the reason shown
};

class FailedOpenTest : public AppFixture, public ::testing::WithParamInterface<FailedOpen> {};

TEST_P(FailedOpenTest, ShowsTheReasonAndOpensNothing) {
    const FailedOpen& test = GetParam();
    const auto location = path(test.at);
    const std::string file = test.file;
    if (file == ".")
        std::ofstream(location) << test.content;
    else if (!file.empty() && std::filesystem::create_directories(location))
        std::ofstream(location / file) << test.content;
    if (std::string_view(test.content) == "3 GiB")
        std::filesystem::resize_file(location / file, std::uintmax_t{3} << 30);
    EXPECT_EQ(controller.openDocument(location), nullptr);
    EXPECT_TRUE(controller.windows().empty());
    ASSERT_EQ(prompts.warnings.size(), 1u);
    EXPECT_TRUE(prompts.warnings[0].text.contains(QStringLiteral("Broken")));
    EXPECT_TRUE(prompts.warnings[0].details.contains(QString::fromUtf8(test.reason)))
        << prompts.warnings[0].details.toStdString();
    EXPECT_TRUE(controller.recentDocuments().paths().isEmpty());
    EXPECT_TRUE(controller.session().notebookBeingOpened().isEmpty());
    if (std::filesystem::is_directory(location)) {
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(location), {}), 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Packages, FailedOpenTest,
                         ::testing::Values(FailedOpen{"Missing", "Broken.quillery", "", "", ""},
                                           FailedOpen{"PlainFile", "Broken.quillery", ".", "notes",
                                                      ""},
                                           FailedOpen{"JournalNotJson", "Broken.quillery",
                                                      "A.journal", "{ not json", ""},
                                           FailedOpen{"FolderOfOtherFiles", "Broken", "beach.txt",
                                                      "sand", "is not a Quillery notebook"},
                                           FailedOpen{"JournalTooLarge", "Broken.quillery",
                                                      "A.journal", "3 GiB", "free memory"}),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

} // namespace
} // namespace quillery
