#include "columns/NoteEditorPanel.h"

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
    void listen(NoteEditorPanel& editor) {
        QObject::connect(&editor, &NoteEditorPanel::finished,
                         [this](const NodePtr& node, const std::string& text) {
                             doneTexts.push_back(text);
                             doneNode = node;
                         });
        QObject::connect(&editor, &NoteEditorPanel::cancelled,
                         [this](const NodePtr& node) { cancelledNode = node; });
    }
    std::vector<std::string> doneTexts;
    NodePtr doneNode;
    NodePtr cancelledNode;
};

class NoteEditor : public ::testing::Test {
protected:
    void SetUp() override {
        editor.setNote(note);
        delegate.listen(editor);
        editor.show();
        editor.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&editor));
        QApplication::processEvents();
    }

    NodePtr note = NotebookNode::create(Identifier("root"), "# Title\n\n  two  spaces\ttab");
    RecordingEditorDelegate delegate;
    NoteEditorPanel editor;
};

TEST_F(NoteEditor, ShowsTheTextAsStoredInTheMonospaceFamilyWithTheCursorInIt) {
    EXPECT_EQ(editor.textEdit()->toPlainText().toStdString(), note->text());
    EXPECT_TRUE(editor.textEdit()->hasFocus());
    EXPECT_EQ(editor.textEdit()->font().family().toStdString(), fontfamilies::monospace());
    EXPECT_NEAR(editor.textEdit()->font().pointSizeF(), 12.0, 0.01); // 16 design points
}

TEST_F(NoteEditor, DoneReportsTheWholeTextEvenUnchanged) {
    editor.finish();
    ASSERT_EQ(delegate.doneTexts.size(), 1u);
    EXPECT_EQ(delegate.doneTexts[0], note->text());
    EXPECT_EQ(delegate.doneNode, note);
}

TEST_F(NoteEditor, ControlReturnIsDoneAndEscapeIsCancel) {
    QTest::keyClicks(editor.textEdit(), QStringLiteral("!"));
    QTest::keyClick(editor.textEdit(), Qt::Key_Return, Qt::ControlModifier);
    ASSERT_EQ(delegate.doneTexts.size(), 1u);
    EXPECT_EQ(delegate.doneTexts[0], note->text() + "!");
    QTest::keyClick(editor.textEdit(), Qt::Key_Escape);
    EXPECT_EQ(delegate.cancelledNode, note);
    EXPECT_EQ(note->text(), "# Title\n\n  two  spaces\ttab"); // the editor never writes the note
}

TEST_F(NoteEditor, UndoStepsThroughTypingOnly) {
    QTest::keyClicks(editor.textEdit(), QStringLiteral(" more"));
    EXPECT_TRUE(editor.textEdit()->document()->isUndoAvailable());
    editor.textEdit()->undo();
    EXPECT_EQ(editor.textEdit()->toPlainText().toStdString(), note->text());
    // Loading the note is not a step of its own.
    EXPECT_FALSE(editor.textEdit()->document()->isUndoAvailable());
}

TEST(NoteEditorInAWindow, ControlZUndoesTypingNotTheWindowsUndo) {
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* editor = new NoteEditorPanel(&window);
    layout->addWidget(editor);
    editor->setNote(NotebookNode::create(Identifier("root"), "text"));
    int documentUndos = 0;
    auto* undo = new QAction(&window);
    undo->setShortcut(QKeySequence::Undo);
    window.addAction(undo);
    QObject::connect(undo, &QAction::triggered, [&] { ++documentUndos; });
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    editor->textEdit()->setFocus();
    QTest::keyClicks(editor->textEdit(), QStringLiteral("!"));
    QTest::keySequence(editor->textEdit(), QKeySequence::Undo);
    EXPECT_EQ(editor->textEdit()->toPlainText(), QStringLiteral("text"));
    EXPECT_EQ(documentUndos, 0);
}

TEST_F(NoteEditor, EmptyTextIsReportedAsEmpty) {
    editor.textEdit()->clear();
    editor.finish();
    ASSERT_EQ(delegate.doneTexts.size(), 1u);
    EXPECT_EQ(delegate.doneTexts[0], "");
}

} // namespace
} // namespace quillery
