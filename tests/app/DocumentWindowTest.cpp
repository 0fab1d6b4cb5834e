#include "QtPrinters.h"
#include "app/AppCommands.h"
#include "app/AppFixture.h"
#include "columns/NoteEditorPanel.h"

#include <QAction>
#include <QClipboard>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTest>

#include <fstream>
#include <map>

namespace quillery {
namespace {

using namespace std::chrono_literals;

class DocumentWindowTest : public AppFixture {
protected:
    static QAction& action(DocumentWindow& window, const char* name) {
        auto* found = window.findChild<QAction*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }
};

// The Edit menu follows the document's undo history and names its steps.

TEST_F(DocumentWindowTest, UndoAndRedoAreNamedAfterTheStepAndDriveTheDocument) {
    DocumentWindow& window = *controller.newDocument();
    QAction& undo = action(window, "actionUndo");
    QAction& redo = action(window, "actionRedo");
    EXPECT_FALSE(undo.isEnabled());
    EXPECT_FALSE(redo.isEnabled());

    addNote(window, "first");
    EXPECT_TRUE(undo.isEnabled());
    EXPECT_EQ(undo.text(), QStringLiteral("&Undo Add Note"));
    EXPECT_TRUE(window.isWindowModified());

    undo.trigger();
    EXPECT_TRUE(window.document().rootNode()->children().empty());
    EXPECT_FALSE(undo.isEnabled());
    EXPECT_EQ(redo.text(), QStringLiteral("&Redo Add Note"));
    EXPECT_FALSE(window.isWindowModified());

    redo.trigger();
    ASSERT_EQ(window.document().rootNode()->children().size(), 1u);
    EXPECT_EQ(window.document().rootNode()->children()[0]->text(), "first");
    EXPECT_EQ(undo.text(), QStringLiteral("&Undo Add Note"));
    EXPECT_FALSE(redo.isEnabled());
}

TEST_F(DocumentWindowTest, HistoryAndNoteCommandsWaitWhileAPanelIsOpen) {
    DocumentWindow& window = *controller.newDocument();
    addNote(window, "first");
    ColumnRow& split = *window.columnRow();

    split.showPanel(new QWidget, 1);
    EXPECT_FALSE(action(window, "actionUndo").isEnabled());
    EXPECT_FALSE(action(window, "actionAddNote").isEnabled());
    EXPECT_FALSE(action(window, "actionEditNote").isEnabled());

    split.closePanel();
    EXPECT_TRUE(action(window, "actionUndo").isEnabled());
    EXPECT_TRUE(action(window, "actionAddNote").isEnabled());
}

TEST_F(DocumentWindowTest, TheNoteMenuActsOnTheFocusedColumn) {
    DocumentWindow& window = *controller.newDocument();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    NoteColumn* first = window.columnRow()->column(0);
    first->takeFocus();

    action(window, "actionAddNote").trigger();

    EXPECT_TRUE(QTest::qWaitFor([&] { return window.columnRow()->panel() != nullptr; }));
    EXPECT_NE(first->temporaryNode(), nullptr);
}

TEST_F(DocumentWindowTest, AddNoteWithNoColumnMakesANewNotebookLikeTheAppCommand) {
    AppCommands app;
    int newDocuments = 0;
    QObject::connect(&app, &AppCommands::newNotebookRequested, [&] { ++newDocuments; });
    controller.setAppCommands(&app);
    // Never shown, so no column has been loaded to take the note.
    DocumentWindow window(controller, std::make_unique<Document>(preferences, &codec),
                          QStringLiteral("Untitled"));
    ASSERT_EQ(window.columnRow()->activeColumn(), nullptr);

    action(window, "actionAddNote").trigger();

    EXPECT_EQ(newDocuments, 1);
    EXPECT_TRUE(window.document().rootNode()->children().empty());
    controller.setAppCommands(nullptr);
}

TEST_F(DocumentWindowTest, EveryCommandHasAShortcutOfItsOwn) {
    DocumentWindow& window = *controller.newDocument();
    for (const char* name : {"actionNew", "actionOpen", "actionSave", "actionSaveAs", "actionClose",
                             "actionQuit", "actionUndo", "actionRedo", "actionPaste",
                             "actionAddNote", "actionAddNoteBeneath", "actionEditNote"}) {
        EXPECT_FALSE(action(window, name).shortcut().isEmpty()) << name;
    }
    std::map<QString, QString> owners;
    for (QAction* each : window.findChildren<QAction*>()) {
        for (const QKeySequence& key : each->shortcuts()) {
            const auto [owner, inserted] = owners.emplace(key.toString(), each->objectName());
            EXPECT_TRUE(inserted) << key.toString().toStdString() << " is taken by "
                                  << owner->second.toStdString() << " and "
                                  << each->objectName().toStdString();
        }
    }
}

// Edit → Paste: a picture or an address goes to the focused column; text fields keep Ctrl+V.

class DocumentWindowPasteTest : public DocumentWindowTest {
protected:
    ~DocumentWindowPasteTest() override { QGuiApplication::clipboard()->clear(); }

    // A shown notebook holding "first", its first column focused.
    DocumentWindow& openFocused() {
        DocumentWindow& window = *controller.newDocument();
        addNote(window, "first");
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        window.columnRow()->column(0)->takeFocus();
        QApplication::processEvents();
        return window;
    }

    // The clipboard takes the data.
    static void copy(QMimeData* data) { QGuiApplication::clipboard()->setMimeData(data); }

    static QMimeData* pictureAndText() {
        QImage image(8, 6, QImage::Format_RGB32);
        image.fill(Qt::green);
        auto* data = new QMimeData;
        data->setImageData(image);
        data->setText(QStringLiteral("words"));
        return data;
    }

    static void pressPaste() {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keySequence(QApplication::focusWidget(), QKeySequence(QKeySequence::Paste));
    }
};

TEST_F(DocumentWindowPasteTest, CtrlVInAColumnAddsThePictureLastAsOneUndoStep) {
    DocumentWindow& window = openFocused();
    QAction& paste = action(window, "actionPaste");
    const NodePtr& root = window.document().rootNode();
    copy(pictureAndText());
    EXPECT_TRUE(paste.isEnabled());

    pressPaste();

    ASSERT_EQ(root->children().size(), 2u);
    EXPECT_EQ(root->children()[0]->text(), "first");
    EXPECT_TRUE(root->children()[1]->imageIdentifier().has_value());
    action(window, "actionUndo").trigger();
    EXPECT_EQ(root->children().size(), 1u);
}

TEST_F(DocumentWindowPasteTest, PasteIsGreyedForTextAndDoesNothing) {
    DocumentWindow& window = openFocused();
    auto* text = new QMimeData;
    text->setText(QStringLiteral("https://example.org/ is only text here"));
    copy(text);

    EXPECT_FALSE(action(window, "actionPaste").isEnabled());
    pressPaste();
    action(window, "actionPaste").trigger();

    EXPECT_EQ(window.document().rootNode()->children().size(), 1u);
}

TEST_F(DocumentWindowPasteTest, CtrlVInTheNoteEditorPastesTextThereAndAddsNoNote) {
    DocumentWindow& window = openFocused();
    copy(pictureAndText());
    action(window, "actionEditNote").trigger();
    ASSERT_TRUE(QTest::qWaitFor(
        [] { return qobject_cast<QPlainTextEdit*>(QApplication::focusWidget()) != nullptr; }));
    auto* editor = qobject_cast<QPlainTextEdit*>(QApplication::focusWidget());
    EXPECT_FALSE(action(window, "actionPaste").isEnabled());

    pressPaste();

    EXPECT_TRUE(editor->toPlainText().contains(QStringLiteral("words")));
    EXPECT_EQ(window.document().rootNode()->children().size(), 1u);
}

// Saving: in place a moment after each change once there is a location, never before.

TEST_F(DocumentWindowTest, AChangeIsSavedInPlaceAMomentLater) {
    const auto location = makePackage("Trip.quillery", {"Flights"});
    DocumentWindow& window = *controller.openDocument(location);
    window.setAutosaveDelay(10ms);

    addNote(window, "Hotels");
    EXPECT_TRUE(window.isWindowModified());

    EXPECT_TRUE(QTest::qWaitFor([&] { return !window.document().hasUnsavedChanges(); }));
    EXPECT_FALSE(window.isWindowModified());
    EXPECT_EQ(textsOnDisk(location), (std::vector<std::string>{"Hotels", "Flights"}));
}

TEST_F(DocumentWindowTest, AFailingAutosaveWarnsOnceAndKeepsTheChanges) {
    const auto location = makePackage("Gone.quillery", {"Flights"});
    DocumentWindow& window = *controller.openDocument(location);
    window.setAutosaveDelay(1ms);
    // A plain file where the package was: nothing can be written into it.
    std::filesystem::remove_all(location);
    std::ofstream(location) << "in the way";

    addNote(window, "Hotels");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !prompts.warnings.empty(); }));
    addNote(window, "Museums");
    QTest::qWait(30);

    ASSERT_EQ(prompts.warnings.size(), 1u);
    EXPECT_TRUE(prompts.warnings[0].text.contains(QStringLiteral("Gone")));
    EXPECT_TRUE(window.document().hasUnsavedChanges());
    EXPECT_EQ(window.document().rootNode()->children().size(), 3u);
}

TEST_F(DocumentWindowTest, AnUntitledNotebookIsNotSavedBehindTheUsersBack) {
    DocumentWindow& window = *controller.newDocument();
    window.setAutosaveDelay(1ms);
    addNote(window, "draft");
    QTest::qWait(30);
    EXPECT_TRUE(window.document().hasUnsavedChanges());
    EXPECT_FALSE(window.document().fileLocation().has_value());
}

TEST_F(DocumentWindowTest, SaveAsWritesTheWholePackageAndTakesItsName) {
    DocumentWindow& window = *controller.newDocument();
    addNote(window, "draft");
    prompts.saveLocation = path("Drafts.quillery");

    action(window, "actionSave").trigger();

    EXPECT_EQ(window.displayName(), QStringLiteral("Drafts"));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Drafts[*]"));
    EXPECT_FALSE(window.isWindowModified());
    EXPECT_EQ(textsOnDisk(path("Drafts.quillery")), std::vector<std::string>{"draft"});
    EXPECT_TRUE(action(window, "actionRevert").isEnabled());
}

// Closing a changed notebook that has nowhere to go asks first.

TEST_F(DocumentWindowTest, ClosingAChangedUntitledNotebookAsksAndCanBeCancelled) {
    QPointer<DocumentWindow> window = controller.newDocument();
    addNote(*window, "draft");

    prompts.saveChoice = DocumentPrompts::SaveChoice::Cancel;
    EXPECT_FALSE(window->close());
    EXPECT_EQ(prompts.savePromptsFor.size(), 1u);

    prompts.saveChoice = DocumentPrompts::SaveChoice::Save;
    prompts.saveLocation = std::nullopt;
    EXPECT_FALSE(window->close()) << "cancelling the save dialog keeps the window";

    prompts.saveLocation = path("Kept.quillery");
    EXPECT_TRUE(window->close());
    EXPECT_EQ(textsOnDisk(path("Kept.quillery")), std::vector<std::string>{"draft"});
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }));
}

TEST_F(DocumentWindowTest, ClosingAnUnchangedOrSavedNotebookAsksNothing) {
    QPointer<DocumentWindow> untitled = controller.newDocument();
    EXPECT_TRUE(untitled->close());

    const auto location = makePackage("Trip.quillery", {"Flights"});
    DocumentWindow& window = *controller.openDocument(location);
    window.setAutosaveDelay(1h);
    addNote(window, "Hotels");
    EXPECT_TRUE(window.close());

    EXPECT_TRUE(prompts.savePromptsFor.empty());
    EXPECT_EQ(textsOnDisk(location), (std::vector<std::string>{"Hotels", "Flights"}));
}

// Closing or quitting with the note editor open keeps what was typed, as Done would.

struct EditorEnding {
    const char* name;
    void (*end)(DocumentController&, DocumentWindow&);
};

class DocumentWindowEditorTest : public DocumentWindowTest,
                                 public ::testing::WithParamInterface<EditorEnding> {
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

TEST_P(DocumentWindowEditorTest, TheTypedTextIsSavedAsOneEdit) {
    const auto location = makePackage("Trip.quillery", {"Flights"});
    DocumentWindow& window = *controller.openDocument(location);
    window.setAutosaveDelay(1h);
    typeInEditor(window, QStringLiteral(" to Oslo"));

    GetParam().end(controller, window);

    EXPECT_TRUE(QTest::qWaitFor([&] { return controller.windows().empty(); }));
    EXPECT_EQ(textsOnDisk(location), std::vector<std::string>{"Flights to Oslo"});
}

INSTANTIATE_TEST_SUITE_P(
    Endings, DocumentWindowEditorTest,
    ::testing::Values(EditorEnding{"Close",
                                   [](DocumentController&, DocumentWindow& window) {
                                       window.close();
                                   }},
                      EditorEnding{"Quit",
                                   [](DocumentController& controller, DocumentWindow&) {
                                       controller.quit();
                                   }}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST_F(DocumentWindowEditorTest, AQuitCancelledElsewhereLeavesTheTextAsOneUndoStep) {
    const auto location = makePackage("Trip.quillery", {"Flights"});
    DocumentWindow& window = *controller.openDocument(location);
    typeInEditor(window, QStringLiteral(" to Oslo"));
    addNote(*controller.newDocument(), "unsaved");
    prompts.saveChoice = DocumentPrompts::SaveChoice::Cancel;

    controller.quit();

    EXPECT_EQ(textsOnDisk(location), std::vector<std::string>{"Flights to Oslo"});
    EXPECT_EQ(action(window, "actionUndo").text(), QStringLiteral("&Undo Edit Text"));
    action(window, "actionUndo").trigger();
    EXPECT_EQ(window.document().rootNode()->children()[0]->text(), "Flights");
}

TEST_F(DocumentWindowEditorTest, AnUntitledNotebookAsksAboutTypedTextAndCancelKeepsTheEditor) {
    DocumentWindow& window = *controller.newDocument();
    addNote(window, "draft");
    window.document().markSaved();
    NoteEditorPanel& editor = typeInEditor(window, QStringLiteral(" two"));

    EXPECT_FALSE(window.close());

    EXPECT_EQ(prompts.savePromptsFor, std::vector<QString>{QStringLiteral("Untitled")});
    EXPECT_EQ(window.columnRow()->panel(), &editor);
    EXPECT_EQ(editor.textEdit()->toPlainText(), QStringLiteral("draft two"));
}

TEST_F(DocumentWindowTest, RevertReadsThePackageAgainAndForgetsTheHistory) {
    const auto location = makePackage("Trip.quillery", {"Flights"});
    DocumentWindow& window = *controller.openDocument(location);
    window.setAutosaveDelay(1h);
    addNote(window, "Hotels");

    action(window, "actionRevert").trigger();

    EXPECT_EQ(prompts.revertQuestions, 1);
    ASSERT_EQ(window.document().rootNode()->children().size(), 1u);
    EXPECT_EQ(window.document().rootNode()->children()[0]->text(), "Flights");
    EXPECT_FALSE(action(window, "actionUndo").isEnabled());
    EXPECT_FALSE(window.isWindowModified());
    EXPECT_EQ(rowCount(window.columnRow()->column(0)), 1);
}

} // namespace
} // namespace quillery
