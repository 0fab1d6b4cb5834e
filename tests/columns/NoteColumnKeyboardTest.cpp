#include "ColumnTestSupport.h"
#include "OpenedUrls.h"
#include "QtPrinters.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace quillery::testing {
namespace {

class ColumnKeyboard : public ColumnFixture {
protected:
    void SetUp() override {
        parent = add(document.rootNode(), "parent");
        for (const char* text : {"a", "b", "c"})
            add(parent, text);
        open(parent);
    }

    NoteListView* table() const { return column->listView(); }
    AddNoteButton* button() const { return addButton(); }

    NodePtr parent;
};

TEST_F(ColumnKeyboard, FocusingTheColumnSelectsTheFirstRow) {
    EXPECT_TRUE(table()->hasFocus());
    EXPECT_EQ(column->selectedRow(), 0);
    ASSERT_EQ(delegate.selected.size(), 1u);
    EXPECT_EQ(delegate.selected.back()->text(), "a");
}

TEST_F(ColumnKeyboard, DownMovesTheSelectionAndTellsTheNavigation) {
    press(Qt::Key_Down);
    EXPECT_EQ(column->selectedRow(), 1);
    EXPECT_EQ(delegate.selected.back()->text(), "b");
}

TEST_F(ColumnKeyboard, DownOnTheLastRowClearsTheSelectionAndFocusesTheButton) {
    column->selectRow(2);
    press(Qt::Key_Down);
    EXPECT_EQ(column->selectedRow(), -1);
    EXPECT_EQ(delegate.cleared, 1);
    EXPECT_TRUE(button()->hasFocus());

    press(Qt::Key_Down); // nothing further down
    EXPECT_TRUE(button()->hasFocus());
    EXPECT_EQ(delegate.cleared, 1);
}

TEST_F(ColumnKeyboard, UpOnTheButtonSelectsTheLastRowAndFocusesTheList) {
    button()->setFocus();
    press(Qt::Key_Up);
    EXPECT_EQ(column->selectedRow(), 2);
    EXPECT_TRUE(table()->hasFocus());
}

TEST_F(ColumnKeyboard, UpOnTheFirstRowKeepsSelectionAndFocus) {
    press(Qt::Key_Up);
    EXPECT_EQ(column->selectedRow(), 0);
    EXPECT_TRUE(table()->hasFocus());
}

TEST_F(ColumnKeyboard, ControlNAndControlPStepLikeDownAndUp) {
    press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(column->selectedRow(), 1);
    press(Qt::Key_N, Qt::ControlModifier);
    press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_TRUE(button()->hasFocus());
    press(Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(column->selectedRow(), 2);
    press(Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(column->selectedRow(), 1);
}

TEST_F(ColumnKeyboard, LeftAndRightAskTheNavigationToMove) {
    press(Qt::Key_Left);
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    EXPECT_EQ(delegate.movedLeft, 1);
    EXPECT_EQ(delegate.movedRight, 2);
    button()->setFocus();
    press(Qt::Key_Left);
    EXPECT_EQ(delegate.movedLeft, 2);
}

TEST_F(ColumnKeyboard, TypingLettersChangesNothing) {
    const std::size_t edits = document.diffs().size();
    column->selectRow(1);
    QTest::keyClicks(table(), QStringLiteral("cab"));
    EXPECT_EQ(column->selectedRow(), 1);
    EXPECT_EQ(document.diffs().size(), edits);
    EXPECT_EQ(delegate.editor, nullptr);
}

TEST_F(ColumnKeyboard, ReturnOpensTheEditorOnTheSelectedTextNote) {
    column->selectRow(1);
    press(Qt::Key_Return);
    ASSERT_NE(delegate.editor, nullptr);
    EXPECT_EQ(delegate.editor->note(), parent->children()[1]);
}

TEST_F(ColumnKeyboard, DeleteAsksFirstAndMovesTheNoteToTheDeletedNotes) {
    column->selectRow(1);
    const NodePtr b = parent->children()[1];
    press(Qt::Key_Backspace);
    EXPECT_EQ(confirmations, 1);
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"a", "c"}));
    EXPECT_EQ(document.deletedRootNode()->children().back(), b);
    EXPECT_EQ(undoManager.undoActionName(), "Delete Note");

    press(Qt::Key_Delete);
    EXPECT_EQ(confirmations, 2);
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"a"}));
}

TEST_F(ColumnKeyboard, CancellingTheConfirmationKeepsTheNote) {
    confirmAnswer = false;
    const std::size_t edits = document.diffs().size();
    press(Qt::Key_Delete);
    EXPECT_EQ(confirmations, 1);
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(document.diffs().size(), edits);
}

TEST_F(ColumnKeyboard, AnEmptyNoteIsDeletedWithoutAsking) {
    add(parent, "");
    column->selectRow(3);
    press(Qt::Key_Backspace);
    EXPECT_EQ(confirmations, 0);
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"a", "b", "c"}));
}

TEST_F(ColumnKeyboard, DeleteWithoutSelectionDoesNothing) {
    button()->setFocus();
    column->listView()->selectionModel()->clearSelection();
    press(Qt::Key_Delete);
    EXPECT_EQ(confirmations, 0);
    EXPECT_EQ(parent->children().size(), 3u);
}

TEST_F(ColumnKeyboard, SpaceAndReturnOnTheButtonAddANote) {
    button()->setFocus();
    press(Qt::Key_Space);
    EXPECT_NE(column->temporaryNode(), nullptr);
    QApplication::processEvents();
    ASSERT_NE(delegate.editor, nullptr);
    delegate.editor->cancel();
    button()->setFocus();
    press(Qt::Key_Return);
    EXPECT_NE(column->temporaryNode(), nullptr);
}

class ColumnKeyboardPictures : public ColumnFixture {};

TEST_F(ColumnKeyboardPictures, ReturnOnAPictureWithoutAFileReportsItMissing) {
    const NodePtr parent = add(document.rootNode(), "parent");
    addPicture(parent, {4, 2});
    open(parent);
    press(Qt::Key_Return);
    EXPECT_EQ(missingPictureReports, 1);
    EXPECT_TRUE(openedUrls().empty());
    EXPECT_EQ(delegate.editor, nullptr);
}

TEST_F(ColumnKeyboardPictures, SpaceShowsASelectedPictureAndIgnoresTextNotes) {
    const NodePtr parent = add(document.rootNode(), "parent");
    add(parent, "text");
    const NodePtr picture = addPicture(parent, {4, 2});
    open(parent);
    press(Qt::Key_Space);
    EXPECT_TRUE(delegate.previewed.empty());
    EXPECT_EQ(delegate.editor, nullptr);

    column->selectRow(1);
    press(Qt::Key_Space);
    EXPECT_EQ(delegate.previewed, std::vector<NodePtr>{picture});
}

class EmptyColumnKeyboard : public ColumnFixture {};

TEST_F(EmptyColumnKeyboard, FocusGoesToTheButtonAndUpDoesNothing) {
    const NodePtr parent = add(document.rootNode(), "parent");
    open(parent);
    EXPECT_TRUE(addButton()->hasFocus());
    EXPECT_TRUE(emptyLabel()->isVisible());
    EXPECT_EQ(emptyLabel()->text(), QStringLiteral("No sub-notes yet"));
    press(Qt::Key_Up);
    EXPECT_TRUE(addButton()->hasFocus());
    EXPECT_EQ(column->selectedRow(), -1);
}

// The window's File > New takes Ctrl+N everywhere except inside a column.
class ColumnShortcuts : public ColumnFixture {};

TEST_F(ColumnShortcuts, ControlNInAColumnBeatsTheWindowShortcut) {
    const NodePtr parent = add(document.rootNode(), "parent");
    add(parent, "a");
    add(parent, "b");
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* field = new QLineEdit(&window);
    layout->addWidget(field);
    auto* own = makeColumn(parent, 1, delegate).release();
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
