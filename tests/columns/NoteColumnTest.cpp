#include "ColumnTestSupport.h"
#include "columns/NoteTextEdit.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <optional>

namespace quillery::testing {
namespace {

// A column of "parent"'s notes.
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
        heard->asked.clear();
    }

    NodePtr parent;
};

// Keys in a column of a, b, c.
struct KeyCase {
    const char* name;
    int from; // the row selected first; -1: the add button has the focus
    const char* keys;
    int row; // selected afterwards; -1: the add button has the focus
    const char* asked;
};

const KeyCase kKeyCases[] = {
    {"DownSelectsTheNextRow", 0, "Down", 1, ""},
    {"DownOnTheLastRowGoesToTheButton", 2, "Down Down", -1, "x"},
    {"UpOnTheButtonSelectsTheLastRow", -1, "Up", 2, ""},
    {"UpOnTheFirstRowStays", 0, "Up", 0, ""},
    {"LeftAndRightAskForTheNeighbours", 0, "Left Right Right", 0, "<>>"},
    {"LeftFromTheButtonToo", -1, "Left", -1, "<"},
    {"TypingChangesNothing", 1, "C A B", 1, ""},
};

class ColumnKeys : public NoteColumnTest, public ::testing::WithParamInterface<KeyCase> {};

TEST_P(ColumnKeys, MoveTheSelectionTheFocusOrAskTheRow) {
    const KeyCase& test = GetParam();
    openWith({"a", "b", "c"});
    startAt(test.from);
    const std::size_t edits = document.diffs().size();
    pressKeys(test.keys);
    EXPECT_EQ(column->selectedRow(), test.row);
    EXPECT_EQ(addButton()->hasFocus(), test.row < 0);
    EXPECT_EQ(heard->asked, test.asked);
    EXPECT_EQ(document.diffs().size(), edits);
    EXPECT_EQ(editor(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Keys, ColumnKeys, ::testing::ValuesIn(kKeyCases),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

// The label of an empty column follows the notes the document adds and takes away.
TEST_F(NoteColumnTest, AnEmptyColumnFocusesTheButtonAndSaysSoUntilANoteComes) {
    open(parent, 0);
    EXPECT_TRUE(addButton()->hasFocus());
    EXPECT_TRUE(emptyLabel()->isVisible());
    EXPECT_EQ(emptyLabel()->text(), QStringLiteral("No notes yet"));
    column->setDepth(1);
    EXPECT_EQ(emptyLabel()->text(), QStringLiteral("No sub-notes yet"));
    const NodePtr only = add(parent, "a");
    EXPECT_FALSE(emptyLabel()->isVisible());
    document.userDidMove(*only, *document.deletedRootNode());
    EXPECT_TRUE(emptyLabel()->isVisible());
    openWith({"a"});
    EXPECT_EQ(heard->selected, std::vector<NodePtr>{parent->children()[0]});
}

// Return and a double-click on a note: text opens in the editor, a picture in the desktop's
// viewer, or a report says why it did not; Return previews a picture while the notebook has no
// file to hand the viewer. Space on a picture is followed to its preview through the row.
enum class Shown { Editor, Viewer, MissingFile, NoViewer, Preview, Nothing };

struct OpenCase {
    const char* name;
    // "text", "picture", "unsaved picture" (of a notebook never saved), "missing picture" (its
    // file gone) or "unviewable picture" (no program opens it)
    const char* note;
    const char* gesture;
    Shown shown;
};

class OpeningNotes : public NoteColumnTest, public ::testing::WithParamInterface<OpenCase> {
protected:
    QTemporaryDir package;
};

TEST_P(OpeningNotes, ShowsTheNoteAsItsKindWants) {
    const OpenCase& test = GetParam();
    const std::string kind = test.note;
    NodePtr note = kind == "text" ? add(parent, "text") : addPicture(parent, {4, 2});
    if (kind != "text" && kind != "unsaved picture") {
        document.setFileLocation(package.path().toStdString());
        document.images().indexStoredPicture(*note->imageIdentifier(), nullptr,
                                             "images/picture.png");
    }
    if (kind == "picture" || kind == "unviewable picture") {
        QDir(package.path()).mkdir(QStringLiteral("images"));
        QFile picture(package.filePath(QStringLiteral("images/picture.png")));
        ASSERT_TRUE(picture.open(QIODevice::WriteOnly));
    }
    std::optional<NoProgramOpensUrls> noViewer;
    if (kind == "unviewable picture")
        noViewer.emplace();
    open(parent);
    if (std::string(test.gesture) == "double-click") {
        // As from the window system: a press and release before the double-click.
        const QPoint row =
            column->listView()->visualRect(column->listView()->model()->index(0, 0)).center();
        QTest::mouseClick(column->listView()->viewport(), Qt::LeftButton, {}, row);
        QTest::mouseDClick(column->listView()->viewport(), Qt::LeftButton, {}, row);
    } else {
        pressKeys(test.gesture);
    }
    EXPECT_EQ(editor() ? editor()->note() : nullptr, test.shown == Shown::Editor ? note : nullptr);
    const QUrl file = QUrl::fromLocalFile(package.filePath(QStringLiteral("images/picture.png")));
    EXPECT_EQ(openedUrls(), test.shown == Shown::Viewer ? std::vector{file} : std::vector<QUrl>());
    std::vector<PictureProblem> problems;
    if (test.shown == Shown::MissingFile)
        problems.push_back(PictureProblem::FileMissing);
    if (test.shown == Shown::NoViewer)
        problems.push_back(PictureProblem::NoViewer);
    EXPECT_EQ(pictureProblems, problems);
    EXPECT_EQ(heard->previewed,
              test.shown == Shown::Preview ? std::vector{note} : std::vector<NodePtr>());
}

INSTANTIATE_TEST_SUITE_P(
    Notes, OpeningNotes,
    ::testing::Values(
        OpenCase{"ReturnEditsText", "text", "Return", Shown::Editor},
        OpenCase{"DoubleClickEditsText", "text", "double-click", Shown::Editor},
        OpenCase{"SpaceIgnoresText", "text", "Space", Shown::Nothing},
        OpenCase{"ReturnOpensAPicture", "picture", "Return", Shown::Viewer},
        OpenCase{"ReturnPreviewsAPictureNotSavedYet", "unsaved picture", "Return", Shown::Preview},
        OpenCase{"ReturnReportsAMissingFile", "missing picture", "Return", Shown::MissingFile},
        OpenCase{"ReturnReportsThatNoViewerTookIt", "unviewable picture", "Return",
                 Shown::NoViewer}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

// Deleting from a column of a, (an empty note), c: notes with content are confirmed first.
struct DeleteCase {
    const char* name;
    int row;
    const char* key;
    bool answer; // to "Are you sure?"
    int confirmations;
    const char* left;
};

class DeletingNotes : public NoteColumnTest, public ::testing::WithParamInterface<DeleteCase> {};

TEST_P(DeletingNotes, MovesTheNoteToTheDeletedNotes) {
    const DeleteCase& test = GetParam();
    openWith({"a", "", "c"});
    confirmAnswer = test.answer;
    startAt(test.row);
    const NodePtr chosen = column->selectedNode();
    pressKeys(test.key);
    EXPECT_EQ(confirmations, test.confirmations);
    EXPECT_EQ(texts(parent), test.left);
    if (texts(parent) != "a, , c") {
        EXPECT_EQ(document.deletedRootNode()->children().back(), chosen);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Keys, DeletingNotes,
    ::testing::Values(DeleteCase{"BackspaceOnceConfirmed", 0, "Backspace", true, 1, ", c"},
                      DeleteCase{"DeleteOnceConfirmed", 2, "Del", true, 1, "a, "},
                      DeleteCase{"NotWhenCancelled", 0, "Del", false, 1, "a, , c"},
                      DeleteCase{"AnEmptyNoteWithoutAsking", 1, "Del", false, 0, "a, c"},
                      DeleteCase{"NothingWithoutASelection", -1, "Del", true, 0, "a, , c"}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

// The question before a delete names the note by its first line and counts what goes with it.
struct QuestionCase {
    const char* text;
    int children;
    int grandchildren; // under the first child
    const char* question;
};

class DeleteQuestion : public NoteColumnTest, public ::testing::WithParamInterface<QuestionCase> {};

TEST_P(DeleteQuestion, NamesTheNoteAndCountsItsNotes) {
    const NodePtr note = add(parent, GetParam().text);
    for (int child = 0; child < GetParam().children; ++child)
        add(note, "child");
    for (int grandchild = 0; grandchild < GetParam().grandchildren; ++grandchild)
        add(note->children().front(), "grandchild");
    EXPECT_EQ(deleteQuestion(*note).toStdString(), GetParam().question);
}

INSTANTIATE_TEST_SUITE_P(
    Notes, DeleteQuestion,
    ::testing::Values(QuestionCase{"## Packing list\nfor the trip", 2, 1,
                                   "Delete “Packing list” and its 3 notes?"},
                      QuestionCase{"**Passport**", 0, 0, "Delete “Passport”?"},
                      QuestionCase{"Socks", 1, 0, "Delete “Socks” and the note in it?"},
                      QuestionCase{"", 0, 0, "Delete this note?"},
                      QuestionCase{
                          "A very long first line that goes on and on past forty characters", 0, 0,
                          "Delete “A very long first line that goes on and…”?"}),
    [](const auto& testCase) { return "Question" + std::to_string(testCase.index); });

// Adding to a column of a, b, c: the new note waits among the children, unrecorded, until its
// editor is done, and is then recorded with its text, an empty one too.
struct AddCase {
    const char* name;
    int row;         // selected first
    const char* how; // "add", "beneath", or a key on the add button
    const char* typed;
    const char* texts;
};

class AddingNotes : public NoteColumnTest, public ::testing::WithParamInterface<AddCase> {};

TEST_P(AddingNotes, RecordsTheNoteWhenItsEditorIsDone) {
    const AddCase& test = GetParam();
    openWith({"a", "b", "c"});
    undoManager.removeAllActions();
    const std::size_t edits = document.diffs().size();
    startAt(test.row);
    if (const std::string how = test.how; how == "add") {
        column->addNote();
    } else if (how == "beneath") {
        column->addNoteBeneath();
    } else {
        addButton()->setFocus();
        pressKeys(test.how);
    }
    const NodePtr added = column->temporaryNode();
    ASSERT_NE(added, nullptr);
    EXPECT_EQ(shown(*column), "a, b, c") << "the row comes a turn later";
    QApplication::processEvents();
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(editor()->note(), added);
    EXPECT_EQ(column->listView()->model()->rowCount(), 4);
    EXPECT_EQ(document.diffs().size(), edits);

    QTest::keyClicks(editor()->textEdit(), QString::fromUtf8(test.typed));
    editor()->finish();
    EXPECT_EQ(texts(parent), test.texts);
    EXPECT_EQ(document.diffs().size(), edits + 1);
    EXPECT_EQ(undoManager.undoActionName(), "Add Note");
    EXPECT_EQ(column->temporaryNode(), nullptr);
    EXPECT_EQ(heard->editorsDone, 1);
    QApplication::processEvents();
    EXPECT_EQ(column->selectedNode(), document.node(added->identifier()));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, AddingNotes,
    ::testing::Values(AddCase{"AddNoteAppends", 0, "add", "new", "a, b, c, new"},
                      AddCase{"AnEmptyNoteIsRecordedToo", 0, "add", "", "a, b, c, "},
                      AddCase{"BeneathTheSelectedRow", 1, "beneath", "x", "a, b, x, c"},
                      AddCase{"BeneathNothingAppends", -1, "beneath", "x", "a, b, c, x"},
                      AddCase{"SpaceOnTheButton", 0, "Space", "x", "a, b, c, x"},
                      AddCase{"ReturnOnTheButton", 0, "Return", "x", "a, b, c, x"}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST_F(NoteColumnTest, ANewNoteCancelledOrLeftInAClosingColumnNeverHappened) {
    openWith({"a"});
    undoManager.removeAllActions();
    const std::size_t edits = document.diffs().size();
    column->addNote();
    QApplication::processEvents();
    QTest::keyClicks(editor()->textEdit(), QStringLiteral("gone"));
    editor()->cancel();
    EXPECT_EQ(shown(*column), "a");
    EXPECT_EQ(heard->editorsDone, 1);

    column->addNote();
    QApplication::processEvents();
    column.reset();
    EXPECT_EQ(texts(parent), "a");
    EXPECT_EQ(document.diffs().size(), edits);
    EXPECT_FALSE(undoManager.canUndo());
}

TEST_F(NoteColumnTest, EditingChangesTheNoteOnlyWhenDone) {
    openWith({"old"});
    const std::size_t edits = document.diffs().size();
    for (const bool done : {false, true}) {
        column->editSelectedNote();
        EXPECT_EQ(editor()->textEdit()->toPlainText(), QStringLiteral("old"));
        QTest::keyClicks(editor()->textEdit(), QStringLiteral(" and new"));
        done ? editor()->finish() : editor()->cancel();
    }
    EXPECT_EQ(texts(parent), "old and new");
    EXPECT_EQ(document.diffs().size(), edits + 1);
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

} // namespace
} // namespace quillery::testing
