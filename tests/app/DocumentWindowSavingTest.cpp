#include "app/AppFixture.h"
#include "app/DocumentWindow.h"
#include "app/MessageBar.h"
#include "columns/NoteEditorPanel.h"
#include "columns/NoteTextEdit.h"

#include <QPlainTextEdit>
#include <QPointer>
#include <QToolButton>

#include <fstream>

namespace quillery {
namespace {

using namespace std::chrono_literals;

// Saving: in place a moment after each change once there is a location, never before; closing,
// quitting and reverting.
using DocumentWindowSavingTest = AppFixture;

TEST_F(DocumentWindowSavingTest, AChangeIsSavedInPlaceAMomentLater) {
    const auto location = makePackage("Trip.quillery", {"Flights"});
    DocumentWindow& window = *controller.openDocument(location);
    window.setAutosaveDelay(10ms);
    addNote(window, "Hotels");
    EXPECT_TRUE(window.isWindowModified());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window.document().hasUnsavedChanges(); }));
    EXPECT_FALSE(window.isWindowModified());
    EXPECT_EQ(textsOnDisk(location), (std::vector<std::string>{"Flights", "Hotels"}));
}

TEST_F(DocumentWindowSavingTest, AFailingAutosaveWarnsOnceAndKeepsTheChanges) {
    const auto location = makePackage("Gone.quillery", {"Flights"});
    DocumentWindow& window = *controller.openDocument(location);
    window.setAutosaveDelay(1ms);
    // A plain file where the pictures folder was: the package cannot be saved.
    std::filesystem::remove_all(location / "images");
    std::ofstream(location / "images") << "in the way";
    addNote(window, "Hotels");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !prompts.warnings.empty(); }));
    addNote(window, "Museums");
    QTest::qWait(30);
    ASSERT_EQ(prompts.warnings.size(), 1u);
    EXPECT_TRUE(prompts.warnings[0].text.contains(QStringLiteral("Gone")));
    EXPECT_TRUE(window.document().hasUnsavedChanges());
}

// A notebook moved or deleted while open is never made anew at its old place: saving stops, and
// the message bar offers to save where it went, when that is found, or elsewhere.
struct GoneCase {
    const char* name;
    bool moved;
    const char* button;
    const char* savedAs;
};

class PackageGoneTest : public AppFixture, public ::testing::WithParamInterface<GoneCase> {};

TEST_P(PackageGoneTest, StopsSavingUntilTheUserSaysWhere) {
    const auto location = makePackage("Trip.quillery", {"Flights"});
    DocumentWindow& window = *controller.openDocument(location);
    window.setAutosaveDelay(1ms);
    if (GetParam().moved)
        std::filesystem::rename(location, path("Voyage.quillery"));
    else
        std::filesystem::remove_all(location);
    addNote(window, "Hotels");
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.messageBar()->isVisible(); }));
    addNote(window, "Museums");
    QTest::qWait(30);
    EXPECT_FALSE(std::filesystem::exists(location));
    EXPECT_TRUE(prompts.warnings.empty());

    prompts.saveLocation = path("Kept.quillery");
    auto* button =
        window.messageBar()->findChild<QToolButton*>(QString::fromLatin1(GetParam().button));
    ASSERT_NE(button, nullptr);
    QTest::mouseClick(button, Qt::LeftButton);

    EXPECT_FALSE(window.messageBar()->isVisible());
    EXPECT_EQ(window.document().fileLocation(), path(GetParam().savedAs));
    EXPECT_EQ(textsOnDisk(path(GetParam().savedAs)),
              (std::vector<std::string>{"Flights", "Hotels", "Museums"}));
    EXPECT_FALSE(std::filesystem::exists(location));
}

INSTANTIATE_TEST_SUITE_P(
    Saving, PackageGoneTest,
    ::testing::Values(GoneCase{"Renamed", true, "actionFollowMovedNotebook", "Voyage.quillery"},
                      GoneCase{"Deleted", false, "actionSaveAs", "Kept.quillery"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(DocumentWindowSavingTest, AnUntitledNotebookIsNotSavedBehindTheUsersBack) {
    DocumentWindow& window = *controller.newDocument();
    window.setAutosaveDelay(1ms);
    addNote(window, "draft");
    QTest::qWait(30);
    EXPECT_TRUE(window.document().hasUnsavedChanges());
    EXPECT_FALSE(window.document().fileLocation().has_value());
}

// Save As takes the new name for the window and for the next start.
TEST_F(DocumentWindowSavingTest, SaveAsWritesTheWholePackageAndTakesItsName) {
    DocumentWindow& window = *controller.newDocument();
    addNote(window, "draft");
    prompts.saveLocation = path("Drafts.quillery");
    action(window, "actionSave").trigger();
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Drafts[*]"));
    EXPECT_FALSE(window.isWindowModified());
    EXPECT_EQ(textsOnDisk(path("Drafts.quillery")), std::vector<std::string>{"draft"});
    EXPECT_TRUE(action(window, "actionRevert").isEnabled());
    EXPECT_EQ(controller.session().openNotebooks(),
              QStringList{QString::fromStdString(path("Drafts.quillery").string())});
}

TEST_F(DocumentWindowSavingTest, ClosingAChangedUntitledNotebookAsksAndCanBeCancelled) {
    QPointer<DocumentWindow> window = controller.newDocument();
    addNote(*window, "draft");
    prompts.saveChoice = DocumentPrompts::SaveChoice::Cancel;
    EXPECT_FALSE(window->close());
    EXPECT_EQ(prompts.savePromptsFor.size(), 1u);
    prompts.saveChoice = DocumentPrompts::SaveChoice::Save;
    EXPECT_FALSE(window->close()) << "cancelling the save dialog keeps the window";
    prompts.saveLocation = path("Kept.quillery");
    EXPECT_TRUE(window->close());
    EXPECT_EQ(textsOnDisk(path("Kept.quillery")), std::vector<std::string>{"draft"});
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }));
}

TEST_F(DocumentWindowSavingTest, ClosingAnUnchangedOrSavedNotebookAsksNothing) {
    EXPECT_TRUE(controller.newDocument()->close());
    const auto location = makePackage("Trip.quillery", {"Flights"});
    DocumentWindow& window = *controller.openDocument(location);
    window.setAutosaveDelay(1h);
    addNote(window, "Hotels");
    EXPECT_TRUE(window.close());
    EXPECT_TRUE(prompts.savePromptsFor.empty());
    EXPECT_EQ(textsOnDisk(location), (std::vector<std::string>{"Flights", "Hotels"}));
}

// Closing or quitting with the note editor open keeps what was typed, as Done would.
struct EditorEnding {
    const char* name;
    void (*end)(DocumentController&, DocumentWindow&);
};

class EditorOpenTest : public AppFixture, public ::testing::WithParamInterface<EditorEnding> {
protected:
    // Opens the editor on the first top-level note and types the text at its end.
    static NoteEditorPanel& typeInEditor(DocumentWindow& window, const QString& text) {
        NoteColumn& column = *window.columnRow()->column(0);
        column.selectRow(0);
        column.editSelectedNote();
        auto* editor = qobject_cast<NoteEditorPanel*>(window.columnRow()->panel());
        EXPECT_NE(editor, nullptr);
        editor->textEdit()->moveCursor(QTextCursor::End);
        editor->textEdit()->insertPlainText(text);
        return *editor;
    }
};

TEST_P(EditorOpenTest, TheTypedTextIsSavedAsOneEdit) {
    const auto location = makePackage("Trip.quillery", {"Flights"});
    DocumentWindow& window = *controller.openDocument(location);
    window.setAutosaveDelay(1h);
    typeInEditor(window, QStringLiteral(" to Oslo"));
    GetParam().end(controller, window);
    EXPECT_TRUE(QTest::qWaitFor([&] { return controller.windows().empty(); }));
    EXPECT_EQ(textsOnDisk(location), std::vector<std::string>{"Flights to Oslo"});
}

INSTANTIATE_TEST_SUITE_P(
    Endings, EditorOpenTest,
    ::testing::Values(EditorEnding{"Close",
                                   [](DocumentController&, DocumentWindow& window) {
                                       window.close();
                                   }},
                      EditorEnding{"Quit",
                                   [](DocumentController& controller, DocumentWindow&) {
                                       controller.quit();
                                   }}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST_F(EditorOpenTest, AQuitCancelledElsewhereLeavesTheTextAsOneUndoStep) {
    const auto location = makePackage("Trip.quillery", {"Flights"});
    DocumentWindow& window = *controller.openDocument(location);
    typeInEditor(window, QStringLiteral(" to Oslo"));
    addNote(*controller.newDocument(), "unsaved");
    prompts.saveChoice = DocumentPrompts::SaveChoice::Cancel;
    controller.quit();
    EXPECT_EQ(textsOnDisk(location), std::vector<std::string>{"Flights to Oslo"});
    EXPECT_EQ(action(window, "actionUndo").text(), QStringLiteral("&Undo Edit Text"));
    action(window, "actionUndo").trigger();
    EXPECT_EQ(texts(*window.document().rootNode()), std::vector<std::string>{"Flights"});
}

TEST_F(EditorOpenTest, AnUntitledNotebookAsksAboutTypedTextAndCancelKeepsTheEditor) {
    DocumentWindow& window = *controller.newDocument();
    addNote(window, "draft");
    window.document().markSaved();
    NoteEditorPanel& editor = typeInEditor(window, QStringLiteral(" two"));
    EXPECT_FALSE(window.close());
    EXPECT_EQ(prompts.savePromptsFor, std::vector<QString>{QStringLiteral("Untitled")});
    EXPECT_EQ(window.columnRow()->panel(), &editor);
    EXPECT_EQ(editor.textEdit()->toPlainText(), QStringLiteral("draft two"));
}

TEST_F(DocumentWindowSavingTest, RevertReadsThePackageAgainAndForgetsTheHistory) {
    const auto location = makePackage("Trip.quillery", {"Flights"});
    DocumentWindow& window = *controller.openDocument(location);
    window.setAutosaveDelay(1h);
    addNote(window, "Hotels");
    action(window, "actionRevert").trigger();
    EXPECT_EQ(prompts.revertQuestions, 1);
    EXPECT_EQ(texts(*window.document().rootNode()), std::vector<std::string>{"Flights"});
    EXPECT_FALSE(action(window, "actionUndo").isEnabled());
    EXPECT_FALSE(window.isWindowModified());
    EXPECT_EQ(rowCount(window.columnRow()->column(0)), 1);
}

} // namespace
} // namespace quillery
