#include "ColumnTestSupport.h"
#include "QtPrinters.h"

#include <QLabel>

namespace quillery::testing {
namespace {

class ColumnAdding : public ColumnFixture {
protected:
    void SetUp() override {
        parent = add(document.rootNode(), "parent");
        for (const char* text : {"a", "b", "c", "d", "e"})
            add(parent, text);
        undoManager.removeAllActions();
        edits = document.diffs().size();
        open(parent);
    }

    // Runs an add command and the turn after it, which shows the row and the editor.
    void startAdding(void (NoteColumn::*command)()) {
        (column.get()->*command)();
        QApplication::processEvents();
        ASSERT_NE(delegate.editor, nullptr);
    }

    NodePtr parent;
    std::size_t edits = 0;
};

TEST_F(ColumnAdding, TheNewNoteWaitsUnrecordedUntilItsEditorIsDone) {
    column->addNote();
    const NodePtr temporary = column->temporaryNode();
    ASSERT_NE(temporary, nullptr);
    EXPECT_EQ(parent->children().back(), temporary);
    EXPECT_EQ(column->listView()->model()->rowCount(), 5); // the row comes a turn later
    QApplication::processEvents();
    EXPECT_EQ(column->listView()->model()->rowCount(), 6);
    ASSERT_NE(delegate.editor, nullptr);
    EXPECT_EQ(delegate.editor->note(), temporary);
    EXPECT_EQ(document.diffs().size(), edits);
    EXPECT_EQ(document.node(temporary->identifier()), nullptr);

    QTest::keyClicks(delegate.editor->textEdit(), QStringLiteral("new"));
    delegate.editor->finish();
    EXPECT_EQ(document.diffs().size(), edits + 1);
    EXPECT_EQ(undoManager.undoActionName(), "Add Note");
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"a", "b", "c", "d", "e", "new"}));
    EXPECT_EQ(column->listView()->model()->rowCount(), 6);
    EXPECT_EQ(column->temporaryNode(), nullptr);
    EXPECT_EQ(delegate.dismissed, 1);
    QApplication::processEvents();
    EXPECT_EQ(column->selectedRow(), 5);
    EXPECT_EQ(delegate.selected.back(), parent->children()[5]);
}

TEST_F(ColumnAdding, CancelLeavesTheDocumentAndItsHistoryUntouched) {
    startAdding(&NoteColumn::addNote);
    QTest::keyClicks(delegate.editor->textEdit(), QStringLiteral("gone"));
    delegate.editor->cancel();
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"a", "b", "c", "d", "e"}));
    EXPECT_EQ(column->listView()->model()->rowCount(), 5);
    EXPECT_EQ(document.diffs().size(), edits);
    EXPECT_FALSE(undoManager.canUndo());
    EXPECT_EQ(delegate.dismissed, 1);
}

TEST_F(ColumnAdding, AnEmptyNewNoteIsStillRecorded) {
    startAdding(&NoteColumn::addNote);
    delegate.editor->finish();
    EXPECT_EQ(document.diffs().size(), edits + 1);
    EXPECT_EQ(texts(parent).back(), "");
}

TEST_F(ColumnAdding, AddBeneathPutsTheNoteUnderTheSelectedRow) {
    column->selectRow(2);
    startAdding(&NoteColumn::addNoteBeneath);
    QTest::keyClicks(delegate.editor->textEdit(), QStringLiteral("x"));
    delegate.editor->finish();
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"a", "b", "c", "x", "d", "e"}));
    QApplication::processEvents();
    EXPECT_EQ(column->selectedRow(), 3);
}

TEST_F(ColumnAdding, AddBeneathWithoutSelectionAppends) {
    column->listView()->selectionModel()->clearSelection();
    startAdding(&NoteColumn::addNoteBeneath);
    delegate.editor->finish();
    EXPECT_EQ(texts(parent).back(), "");
    EXPECT_EQ(parent->children().size(), 6u);
}

TEST_F(ColumnAdding, ClosingTheColumnWhileTypingThrowsTheNewNoteAway) {
    startAdding(&NoteColumn::addNote);
    delegate.editor.reset();
    column.reset();
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"a", "b", "c", "d", "e"}));
}

class ColumnEditing : public ColumnFixture {};

TEST_F(ColumnEditing, DoneModifiesTheNoteAsOneUndoableStep) {
    const NodePtr parent = add(document.rootNode(), "parent");
    add(parent, "old");
    open(parent);
    column->editSelectedNote();
    ASSERT_NE(delegate.editor, nullptr);
    EXPECT_EQ(delegate.editor->textEdit()->toPlainText(), QStringLiteral("old"));
    QTest::keyClicks(delegate.editor->textEdit(), QStringLiteral(" and new"));
    delegate.editor->finish();
    EXPECT_EQ(parent->children()[0]->text(), "old and new");
    EXPECT_EQ(undoManager.undoActionName(), "Edit Text");
    undoManager.undo();
    EXPECT_EQ(parent->children()[0]->text(), "old");
}

TEST_F(ColumnEditing, CancelLeavesAnExistingNoteAsItWas) {
    const NodePtr parent = add(document.rootNode(), "parent");
    add(parent, "old");
    const std::size_t edits = document.diffs().size();
    open(parent);
    column->editSelectedNote();
    ASSERT_NE(delegate.editor, nullptr);
    QTest::keyClicks(delegate.editor->textEdit(), QStringLiteral("x"));
    delegate.editor->cancel();
    EXPECT_EQ(parent->children()[0]->text(), "old");
    EXPECT_EQ(document.diffs().size(), edits);
}

TEST_F(ColumnEditing, DisablingTheColumnDisablesTheListAndButton) {
    const NodePtr parent = add(document.rootNode(), "parent");
    add(parent, "a");
    open(parent);
    column->setColumnEnabled(false);
    EXPECT_FALSE(column->isColumnEnabled());
    EXPECT_FALSE(column->listView()->isEnabled());
    EXPECT_FALSE(addButton()->isEnabled());
    column->setColumnEnabled(true);
    EXPECT_TRUE(column->listView()->isEnabled());
    EXPECT_TRUE(addButton()->isEnabled());
}

TEST_F(ColumnEditing, TheRootColumnHasItsOwnEmptyText) {
    open(document.rootNode(), 0);
    EXPECT_EQ(emptyLabel()->text(), QStringLiteral("No notes yet"));
    EXPECT_TRUE(emptyLabel()->isVisible());
}

TEST_F(ColumnEditing, AColumnWithoutANoteDoesNothing) {
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
