#include "columns/EditNodeViewController.h"

#include "QtPrinters.h"
#include "markdown/Styles.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QPlainTextEdit>
#include <QTest>

#include <gtest/gtest.h>

namespace quillery {
namespace {

class RecordingEditorDelegate {
public:
    void listen(EditNodeViewController& editor) {
        QObject::connect(&editor, &EditNodeViewController::finished,
                         [this](const NodePtr& node, const std::string& text) {
                             doneTexts.push_back(text);
                             doneNode = node;
                         });
        QObject::connect(&editor, &EditNodeViewController::cancelled,
                         [this](const NodePtr& node) { cancelledNode = node; });
    }
    std::vector<std::string> doneTexts;
    NodePtr doneNode;
    NodePtr cancelledNode;
};

class NoteEditor : public ::testing::Test {
protected:
    void SetUp() override {
        editor.setRepresentedNode(note);
        delegate.listen(editor);
        editor.show();
        editor.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&editor));
        QApplication::processEvents();
    }

    NodePtr note = NotebookNode::create(Identifier("root"), "# Title\n\n  two  spaces\ttab");
    RecordingEditorDelegate delegate;
    EditNodeViewController editor;
};

TEST_F(NoteEditor, ShowsTheTextAsStoredInTheMonospaceFamilyWithTheCursorInIt) {
    EXPECT_EQ(editor.textView()->toPlainText().toStdString(), note->text());
    EXPECT_TRUE(editor.textView()->hasFocus());
    EXPECT_EQ(editor.textView()->font().family().toStdString(), fontfamilies::monospace());
    EXPECT_NEAR(editor.textView()->font().pointSizeF(), 12.0, 0.01); // 16 design points
}

TEST_F(NoteEditor, DoneReportsTheWholeTextEvenUnchanged) {
    editor.didTapDone();
    ASSERT_EQ(delegate.doneTexts.size(), 1u);
    EXPECT_EQ(delegate.doneTexts[0], note->text());
    EXPECT_EQ(delegate.doneNode, note);
}

TEST_F(NoteEditor, ControlReturnIsDoneAndEscapeIsCancel) {
    QTest::keyClicks(editor.textView(), QStringLiteral("!"));
    QTest::keyClick(editor.textView(), Qt::Key_Return, Qt::ControlModifier);
    ASSERT_EQ(delegate.doneTexts.size(), 1u);
    EXPECT_EQ(delegate.doneTexts[0], note->text() + "!");
    QTest::keyClick(editor.textView(), Qt::Key_Escape);
    EXPECT_EQ(delegate.cancelledNode, note);
    EXPECT_EQ(note->text(), "# Title\n\n  two  spaces\ttab"); // the editor never writes the note
}

TEST_F(NoteEditor, UndoStepsThroughTypingOnly) {
    QTest::keyClicks(editor.textView(), QStringLiteral(" more"));
    EXPECT_TRUE(editor.textView()->document()->isUndoAvailable());
    editor.textView()->undo();
    EXPECT_EQ(editor.textView()->toPlainText().toStdString(), note->text());
    // Loading the note is not a step of its own.
    EXPECT_FALSE(editor.textView()->document()->isUndoAvailable());
}

TEST(NoteEditorInAWindow, ControlZUndoesTypingNotTheWindowsUndo) {
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* editor = new EditNodeViewController(&window);
    layout->addWidget(editor);
    editor->setRepresentedNode(NotebookNode::create(Identifier("root"), "text"));
    int documentUndos = 0;
    auto* undo = new QAction(&window);
    undo->setShortcut(QKeySequence::Undo);
    window.addAction(undo);
    QObject::connect(undo, &QAction::triggered, [&] { ++documentUndos; });
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    editor->textView()->setFocus();
    QTest::keyClicks(editor->textView(), QStringLiteral("!"));
    QTest::keySequence(editor->textView(), QKeySequence::Undo);
    EXPECT_EQ(editor->textView()->toPlainText(), QStringLiteral("text"));
    EXPECT_EQ(documentUndos, 0);
}

TEST_F(NoteEditor, EmptyTextIsReportedAsEmpty) {
    editor.textView()->clear();
    editor.didTapDone();
    ASSERT_EQ(delegate.doneTexts.size(), 1u);
    EXPECT_EQ(delegate.doneTexts[0], "");
}

} // namespace
} // namespace quillery
