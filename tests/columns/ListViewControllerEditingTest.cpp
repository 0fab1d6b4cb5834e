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
    void startAdding(void (ListViewController::*command)()) {
        (column.get()->*command)();
        QApplication::processEvents();
        ASSERT_NE(delegate.editor, nullptr);
    }

    NodePtr parent;
    std::size_t edits = 0;
};

TEST_F(ColumnAdding, TheNewNoteWaitsUnrecordedUntilItsEditorIsDone) {
    column->didTapAddNode();
    const NodePtr temporary = column->temporaryNode();
    ASSERT_NE(temporary, nullptr);
    EXPECT_EQ(parent->children().back(), temporary);
    EXPECT_EQ(column->tableView()->model()->rowCount(), 5); // the row comes a turn later
    QApplication::processEvents();
    EXPECT_EQ(column->tableView()->model()->rowCount(), 6);
    ASSERT_NE(delegate.editor, nullptr);
    EXPECT_EQ(delegate.editor->representedNode(), temporary);
    EXPECT_EQ(document.diffs().size(), edits);
    EXPECT_EQ(document.node(temporary->identifier()), nullptr);

    QTest::keyClicks(delegate.editor->textView(), QStringLiteral("new"));
    delegate.editor->didTapDone();
    EXPECT_EQ(document.diffs().size(), edits + 1);
    EXPECT_EQ(undoManager.undoActionName(), "Add Note");
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"a", "b", "c", "d", "e", "new"}));
    EXPECT_EQ(column->tableView()->model()->rowCount(), 6);
    EXPECT_EQ(column->temporaryNode(), nullptr);
    EXPECT_EQ(delegate.dismissed, 1);
    QApplication::processEvents();
    EXPECT_EQ(column->selectedRow(), 5);
    EXPECT_EQ(delegate.selected.back(), parent->children()[5]);
}

TEST_F(ColumnAdding, CancelLeavesTheDocumentAndItsHistoryUntouched) {
    startAdding(&ListViewController::didTapAddNode);
    QTest::keyClicks(delegate.editor->textView(), QStringLiteral("gone"));
    delegate.editor->didTapCancel();
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"a", "b", "c", "d", "e"}));
    EXPECT_EQ(column->tableView()->model()->rowCount(), 5);
    EXPECT_EQ(document.diffs().size(), edits);
    EXPECT_FALSE(undoManager.canUndo());
    EXPECT_EQ(delegate.dismissed, 1);
}

TEST_F(ColumnAdding, AnEmptyNewNoteIsStillRecorded) {
    startAdding(&ListViewController::didTapAddNode);
    delegate.editor->didTapDone();
    EXPECT_EQ(document.diffs().size(), edits + 1);
    EXPECT_EQ(texts(parent).back(), "");
}

TEST_F(ColumnAdding, AddBeneathPutsTheNoteUnderTheSelectedRow) {
    column->selectRow(2);
    startAdding(&ListViewController::didTapAddNodeBeneath);
    QTest::keyClicks(delegate.editor->textView(), QStringLiteral("x"));
    delegate.editor->didTapDone();
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"a", "b", "c", "x", "d", "e"}));
    QApplication::processEvents();
    EXPECT_EQ(column->selectedRow(), 3);
}

TEST_F(ColumnAdding, AddBeneathWithoutSelectionAppends) {
    column->tableView()->selectionModel()->clearSelection();
    startAdding(&ListViewController::didTapAddNodeBeneath);
    delegate.editor->didTapDone();
    EXPECT_EQ(texts(parent).back(), "");
    EXPECT_EQ(parent->children().size(), 6u);
}

TEST_F(ColumnAdding, ClosingTheColumnWhileTypingThrowsTheNewNoteAway) {
    startAdding(&ListViewController::didTapAddNode);
    delegate.editor.reset();
    column.reset();
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"a", "b", "c", "d", "e"}));
}

class ColumnEditing : public ColumnFixture {};

TEST_F(ColumnEditing, DoneModifiesTheNoteAsOneUndoableStep) {
    const NodePtr parent = add(document.rootNode(), "parent");
    add(parent, "old");
    open(parent);
    column->didTapEditNode();
    ASSERT_NE(delegate.editor, nullptr);
    EXPECT_EQ(delegate.editor->textView()->toPlainText(), QStringLiteral("old"));
    QTest::keyClicks(delegate.editor->textView(), QStringLiteral(" and new"));
    delegate.editor->didTapDone();
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
    column->didTapEditNode();
    ASSERT_NE(delegate.editor, nullptr);
    QTest::keyClicks(delegate.editor->textView(), QStringLiteral("x"));
    delegate.editor->didTapCancel();
    EXPECT_EQ(parent->children()[0]->text(), "old");
    EXPECT_EQ(document.diffs().size(), edits);
}

TEST_F(ColumnEditing, DisablingTheColumnDisablesTheListAndButton) {
    const NodePtr parent = add(document.rootNode(), "parent");
    add(parent, "a");
    open(parent);
    column->setColumnEnabled(false);
    EXPECT_FALSE(column->isColumnEnabled());
    EXPECT_FALSE(column->tableView()->isEnabled());
    EXPECT_FALSE(column->addNodeButton()->isEnabled());
    column->setColumnEnabled(true);
    EXPECT_TRUE(column->tableView()->isEnabled());
    EXPECT_TRUE(column->addNodeButton()->isEnabled());
}

TEST_F(ColumnEditing, TheRootColumnHasItsOwnEmptyText) {
    open(document.rootNode(), 0);
    EXPECT_EQ(column->noEntriesLabel()->text(), QStringLiteral("No notes yet"));
    EXPECT_TRUE(column->noEntriesLabel()->isVisible());
}

TEST_F(ColumnEditing, AColumnWithoutANoteDoesNothing) {
    column = std::make_unique<ListViewController>(nullptr);
    column->didTapAddNode();
    column->didTapAddNodeBeneath();
    column->didTapEditNode();
    column->didTapDeleteNode();
    column->makeFirstResponder();
    EXPECT_EQ(column->temporaryNode(), nullptr);
    EXPECT_EQ(column->tableView()->model()->rowCount(), 0);
}

} // namespace
} // namespace quillery::testing
