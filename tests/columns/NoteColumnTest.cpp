#include "ColumnTestSupport.h"

#include <QAction>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QVBoxLayout>

namespace quillery::testing {
namespace {

// A column showing "parent": a, b, c.
class NoteColumnTest : public ColumnFixture {
protected:
    NoteColumnTest() { parent = add(document.rootNode(), "parent"); }

    void openWith(const std::vector<const char*>& children) {
        for (const char* text : children)
            add(parent, text);
        open(parent);
    }

    // Starts from the row, or with the focus on the add button and nothing selected (-1).
    void startAt(int row) {
        if (row >= 0) {
            column->selectRow(row);
        } else {
            column->listView()->clearSelection();
            addButton()->setFocus();
        }
    }

    NodePtr parent;
};

struct KeyCase {
    const char* name;
    int startRow;
    std::vector<QKeyCombination> keys;
    int row; // selected afterwards
    bool onButton;
    int cleared; // selections cleared on the way
    int left;
    int right;

    friend void PrintTo(const KeyCase& c, std::ostream* out) { *out << c.name; }
};

constexpr QKeyCombination kUp = Qt::Key_Up;
constexpr QKeyCombination kDown = Qt::Key_Down;

const KeyCase kKeyCases[] = {
    {"DownSelectsTheNextRow", 0, {kDown}, 1, false, 0, 0, 0},
    {"DownOnTheLastRowGoesToTheButton", 2, {kDown, kDown}, -1, true, 1, 0, 0},
    {"UpOnTheButtonSelectsTheLastRow", -1, {kUp}, 2, false, 0, 0, 0},
    {"UpOnTheFirstRowStays", 0, {kUp}, 0, false, 0, 0, 0},
    {"ControlNAndPStepLikeDownAndUp",
     0,
     {Qt::CTRL | Qt::Key_N, Qt::CTRL | Qt::Key_N, Qt::CTRL | Qt::Key_N, Qt::CTRL | Qt::Key_P,
      Qt::CTRL | Qt::Key_P},
     1,
     false,
     1,
     0,
     0},
    {"LeftAndRightAskForTheNeighbours",
     0,
     {Qt::Key_Left, Qt::Key_Right, Qt::Key_Right},
     0,
     false,
     0,
     1,
     2},
    {"LeftFromTheButtonToo", -1, {Qt::Key_Left}, -1, true, 0, 1, 0},
    {"TypingChangesNothing", 1, {Qt::Key_C, Qt::Key_A, Qt::Key_B}, 1, false, 0, 0, 0},
};

class ColumnKeys : public NoteColumnTest, public ::testing::WithParamInterface<KeyCase> {};

TEST_P(ColumnKeys, MoveTheSelectionTheFocusOrAskTheRow) {
    const KeyCase& test = GetParam();
    openWith({"a", "b", "c"});
    startAt(test.startRow);
    const int cleared = heard->cleared;
    const std::size_t edits = document.diffs().size();
    for (const QKeyCombination key : test.keys)
        press(key.key(), key.keyboardModifiers());
    EXPECT_EQ(column->selectedRow(), test.row);
    EXPECT_EQ(addButton()->hasFocus(), test.onButton);
    EXPECT_EQ(heard->cleared - cleared, test.cleared);
    EXPECT_EQ(heard->left, test.left);
    EXPECT_EQ(heard->right, test.right);
    EXPECT_EQ(document.diffs().size(), edits);
    EXPECT_EQ(editor(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Keys, ColumnKeys, ::testing::ValuesIn(kKeyCases),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

TEST_F(NoteColumnTest, TakingTheFocusSelectsTheFirstRowOrTheButtonOfAnEmptyColumn) {
    open(parent, 0);
    EXPECT_TRUE(addButton()->hasFocus());
    EXPECT_TRUE(emptyLabel()->isVisible());
    EXPECT_EQ(emptyLabel()->text(), QStringLiteral("No notes yet"));
    column->setDepth(1);
    EXPECT_EQ(emptyLabel()->text(), QStringLiteral("No sub-notes yet"));

    openWith({"a"});
    EXPECT_EQ(column->selectedRow(), 0);
    EXPECT_EQ(heard->selected, std::vector<NodePtr>{parent->children()[0]});
}

// Return, a double-click and Space on the selected note.
enum class Shown { Editor, Viewer, MissingFile, Preview, Nothing };
enum class Note { Text, Picture, PictureWithoutFile };
enum class Gesture { Return, DoubleClick, Space };

struct OpenCase {
    const char* name;
    Note note;
    Gesture gesture;
    Shown shown;

    friend void PrintTo(const OpenCase& c, std::ostream* out) { *out << c.name; }
};

class OpeningNotes : public NoteColumnTest, public ::testing::WithParamInterface<OpenCase> {
protected:
    QTemporaryDir package;
};

TEST_P(OpeningNotes, ShowsTheNoteAsItsKindWants) {
    const OpenCase& test = GetParam();
    NodePtr note = test.note == Note::Text ? add(parent, "text") : addPicture(parent, {4, 2});
    if (test.note == Note::Picture) {
        document.setFileLocation(package.path().toStdString());
        document.images().indexStoredPicture(*note->imageIdentifier(), nullptr, "picture.png");
    }
    open(parent);
    if (test.gesture == Gesture::DoubleClick) {
        // As from the window system: a press and release before the double-click.
        QWidget* viewport = column->listView()->viewport();
        const QPoint row =
            column->listView()->visualRect(column->listView()->model()->index(0, 0)).center();
        QTest::mouseClick(viewport, Qt::LeftButton, {}, row);
        QTest::mouseDClick(viewport, Qt::LeftButton, {}, row);
    } else {
        press(test.gesture == Gesture::Return ? Qt::Key_Return : Qt::Key_Space);
    }
    EXPECT_EQ(editor() ? editor()->note() : nullptr, test.shown == Shown::Editor ? note : nullptr);
    EXPECT_EQ(openedUrls(), test.shown == Shown::Viewer
                                ? std::vector<QUrl>{QUrl::fromLocalFile(
                                      package.filePath(QStringLiteral("images/picture.png")))}
                                : std::vector<QUrl>());
    EXPECT_EQ(missingPictureReports, test.shown == Shown::MissingFile ? 1 : 0);
    EXPECT_EQ(heard->previewed,
              test.shown == Shown::Preview ? std::vector{note} : std::vector<NodePtr>());
}

INSTANTIATE_TEST_SUITE_P(
    Notes, OpeningNotes,
    ::testing::Values(
        OpenCase{"ReturnEditsText", Note::Text, Gesture::Return, Shown::Editor},
        OpenCase{"DoubleClickEditsText", Note::Text, Gesture::DoubleClick, Shown::Editor},
        OpenCase{"SpaceIgnoresText", Note::Text, Gesture::Space, Shown::Nothing},
        OpenCase{"ReturnOpensAPictureInTheViewer", Note::Picture, Gesture::Return, Shown::Viewer},
        OpenCase{"DoubleClickOpensAPictureInTheViewer", Note::Picture, Gesture::DoubleClick,
                 Shown::Viewer},
        OpenCase{"ReturnReportsAPictureWithoutItsFile", Note::PictureWithoutFile, Gesture::Return,
                 Shown::MissingFile},
        OpenCase{"SpacePreviewsAPicture", Note::Picture, Gesture::Space, Shown::Preview}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

struct DeleteCase {
    const char* name;
    int row;
    Qt::Key key;
    bool answer; // to "Are you sure?"
    int confirmations;
    std::vector<std::string> left;

    friend void PrintTo(const DeleteCase& c, std::ostream* out) { *out << c.name; }
};

class DeletingNotes : public NoteColumnTest, public ::testing::WithParamInterface<DeleteCase> {};

TEST_P(DeletingNotes, AsksForNotesWithContentAndKeepsThemAmongTheDeleted) {
    const DeleteCase& test = GetParam();
    openWith({"a", "", "c"});
    confirmAnswer = test.answer;
    startAt(test.row);
    const NodePtr chosen = column->selectedNode();
    press(test.key);
    EXPECT_EQ(confirmations, test.confirmations);
    EXPECT_EQ(texts(parent), test.left);
    if (test.left.size() < 3) {
        EXPECT_EQ(document.deletedRootNode()->children().back(), chosen);
        EXPECT_EQ(undoManager.undoActionName(), "Delete Note");
    }
}

INSTANTIATE_TEST_SUITE_P(
    Keys, DeletingNotes,
    ::testing::Values(
        DeleteCase{"BackspaceOnceConfirmed", 0, Qt::Key_Backspace, true, 1, {"", "c"}},
        DeleteCase{"DeleteOnceConfirmed", 2, Qt::Key_Delete, true, 1, {"a", ""}},
        DeleteCase{"NotWhenCancelled", 0, Qt::Key_Delete, false, 1, {"a", "", "c"}},
        DeleteCase{"AnEmptyNoteWithoutAsking", 1, Qt::Key_Delete, false, 0, {"a", "c"}},
        DeleteCase{"NothingWithoutASelection", -1, Qt::Key_Delete, true, 0, {"a", "", "c"}}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

// Adding: the new note waits among the children, unrecorded, until its editor is done.
struct AddCase {
    const char* name;
    int row; // selected first
    void (*start)(NoteColumn&);
    const char* typed;
    std::vector<std::string> texts;

    friend void PrintTo(const AddCase& c, std::ostream* out) { *out << c.name; }
};

void pressOnButton(NoteColumn& column, Qt::Key key) {
    column.findChild<AddNoteButton*>()->setFocus();
    QTest::keyClick(QApplication::focusWidget(), key);
}

class AddingNotes : public NoteColumnTest, public ::testing::WithParamInterface<AddCase> {};

TEST_P(AddingNotes, RecordsTheNoteWhenItsEditorIsDone) {
    const AddCase& test = GetParam();
    openWith({"a", "b", "c"});
    undoManager.removeAllActions();
    const std::size_t edits = document.diffs().size();
    startAt(test.row);
    test.start(*column);
    const NodePtr added = column->temporaryNode();
    ASSERT_NE(added, nullptr);
    EXPECT_EQ(shownTexts(*column).size(), 3u) << "the row comes a turn later";
    QApplication::processEvents();
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(editor()->note(), added);
    EXPECT_EQ(shownTexts(*column).size(), 4u);
    EXPECT_EQ(document.node(added->identifier()), nullptr);
    EXPECT_EQ(document.diffs().size(), edits);

    QTest::keyClicks(editor()->textEdit(), QString::fromUtf8(test.typed));
    editor()->finish();
    EXPECT_EQ(texts(parent), test.texts);
    EXPECT_EQ(shownTexts(*column), test.texts);
    EXPECT_EQ(document.diffs().size(), edits + 1);
    EXPECT_EQ(undoManager.undoActionName(), "Add Note");
    EXPECT_EQ(column->temporaryNode(), nullptr);
    EXPECT_EQ(heard->editorsDone, 1);
    QApplication::processEvents();
    EXPECT_EQ(column->selectedNode(), document.node(added->identifier()));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, AddingNotes,
    ::testing::Values(
        AddCase{
            "AddNoteAppends", 0, [](NoteColumn& c) { c.addNote(); }, "new", {"a", "b", "c", "new"}},
        AddCase{"AnEmptyNoteIsRecordedToo",
                0,
                [](NoteColumn& c) { c.addNote(); },
                "",
                {"a", "b", "c", ""}},
        AddCase{"BeneathTheSelectedRow",
                1,
                [](NoteColumn& c) { c.addNoteBeneath(); },
                "x",
                {"a", "b", "x", "c"}},
        AddCase{"BeneathNothingAppends",
                -1,
                [](NoteColumn& c) { c.addNoteBeneath(); },
                "x",
                {"a", "b", "c", "x"}},
        AddCase{"SpaceOnTheButton",
                0,
                [](NoteColumn& c) { pressOnButton(c, Qt::Key_Space); },
                "x",
                {"a", "b", "c", "x"}},
        AddCase{"ReturnOnTheButton",
                0,
                [](NoteColumn& c) { pressOnButton(c, Qt::Key_Return); },
                "x",
                {"a", "b", "c", "x"}}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST_F(NoteColumnTest, ANewNoteCancelledOrLeftInAClosingColumnNeverHappened) {
    openWith({"a"});
    undoManager.removeAllActions();
    const std::size_t edits = document.diffs().size();
    column->addNote();
    QApplication::processEvents();
    QTest::keyClicks(editor()->textEdit(), QStringLiteral("gone"));
    editor()->cancel();
    EXPECT_EQ(shownTexts(*column), std::vector<std::string>{"a"});
    EXPECT_EQ(heard->editorsDone, 1);

    column->addNote();
    QApplication::processEvents();
    column.reset();
    EXPECT_EQ(texts(parent), std::vector<std::string>{"a"});
    EXPECT_EQ(document.diffs().size(), edits);
    EXPECT_FALSE(undoManager.canUndo());
}

TEST_F(NoteColumnTest, EditingChangesTheNoteOnlyWhenDone) {
    openWith({"old"});
    const std::size_t edits = document.diffs().size();
    column->editSelectedNote();
    QTest::keyClicks(editor()->textEdit(), QStringLiteral(" and new"));
    editor()->cancel();
    EXPECT_EQ(texts(parent), std::vector<std::string>{"old"});
    EXPECT_EQ(document.diffs().size(), edits);

    column->editSelectedNote();
    EXPECT_EQ(editor()->textEdit()->toPlainText(), QStringLiteral("old"));
    QTest::keyClicks(editor()->textEdit(), QStringLiteral(" and new"));
    editor()->finish();
    EXPECT_EQ(texts(parent), std::vector<std::string>{"old and new"});
    EXPECT_EQ(document.diffs().size(), edits + 1);
}

TEST_F(NoteColumnTest, ADisabledColumnTakesNoInput) {
    openWith({"a"});
    column->setColumnEnabled(false);
    EXPECT_FALSE(column->listView()->isEnabled());
    EXPECT_FALSE(addButton()->isEnabled());
    column->setColumnEnabled(true);
    EXPECT_TRUE(column->listView()->isEnabled());
    EXPECT_TRUE(addButton()->isEnabled());
}

TEST_F(NoteColumnTest, AColumnWithoutANoteDoesNothing) {
    column = std::make_unique<NoteColumn>(nullptr);
    column->addNote();
    column->addNoteBeneath();
    column->editSelectedNote();
    column->deleteSelectedNote();
    column->takeFocus();
    EXPECT_EQ(column->temporaryNode(), nullptr);
    EXPECT_EQ(column->listView()->model()->rowCount(), 0);
}

// The window's File > New takes Ctrl+N everywhere except inside a column.
TEST_F(NoteColumnTest, ControlNInAColumnBeatsTheWindowShortcut) {
    add(parent, "a");
    add(parent, "b");
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* field = new QLineEdit(&window);
    layout->addWidget(field);
    NoteColumn* own = makeColumn(parent).release();
    layout->addWidget(own);
    int newDocuments = 0;
    auto* newAction = new QAction(&window);
    newAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
    window.addAction(newAction);
    QObject::connect(newAction, &QAction::triggered, [&] { ++newDocuments; });
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));

    own->takeFocus();
    press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(own->selectedRow(), 1);
    EXPECT_EQ(newDocuments, 0);
    field->setFocus();
    press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(newDocuments, 1);
}

} // namespace
} // namespace quillery::testing
