#include "columns/NoteEditorPanel.h"

#include "QtPrinters.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QPlainTextEdit>
#include <QTest>

#include <gtest/gtest.h>

namespace quillery {
namespace {

// The panel in a window whose Undo action has the usual shortcut, as in a document window.
class NoteEditorPanelTest : public ::testing::Test {
protected:
    void SetUp() override {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(editor);
        editor->setNote(note);
        QObject::connect(editor, &NoteEditorPanel::finished,
                         [this](const NodePtr& node, const std::string& text) {
                             EXPECT_EQ(node, note);
                             finished.push_back(text);
                         });
        QObject::connect(editor, &NoteEditorPanel::cancelled, [this] { ++cancelled; });
        auto* undo = new QAction(&window);
        undo->setShortcut(QKeySequence::Undo);
        window.addAction(undo);
        QObject::connect(undo, &QAction::triggered, [this] { ++windowUndos; });
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        QApplication::processEvents();
    }

    QPlainTextEdit& text() const { return *editor->textEdit(); }

    NodePtr note = NotebookNode::create(Identifier("root"), "# Title\n\n  two  spaces\ttab");
    QWidget window;
    NoteEditorPanel* editor = new NoteEditorPanel(&window);
    std::vector<std::string> finished;
    int cancelled = 0;
    int windowUndos = 0;
};

TEST_F(NoteEditorPanelTest, ShowsTheTextAsStoredWithTheFocusInIt) {
    EXPECT_EQ(text().toPlainText().toStdString(), note->text());
    EXPECT_TRUE(text().hasFocus());
}

TEST_F(NoteEditorPanelTest, ControlReturnReportsTheWholeTextAndEscapeCancels) {
    editor->finish();
    QTest::keyClicks(&text(), QStringLiteral("!"));
    QTest::keyClick(&text(), Qt::Key_Return, Qt::ControlModifier);
    text().clear();
    QTest::keyClick(&text(), Qt::Key_Enter, Qt::ControlModifier);
    QTest::keyClick(&text(), Qt::Key_Escape);
    EXPECT_EQ(finished, (std::vector<std::string>{note->text(), note->text() + "!", ""}));
    EXPECT_EQ(cancelled, 1);
    EXPECT_EQ(note->text(), "# Title\n\n  two  spaces\ttab"); // the panel never writes the note
}

// Typing has a history of its own; loading the note is no step of it.
TEST_F(NoteEditorPanelTest, ControlZUndoesTypingOnlyAndNeverTheWindowsHistory) {
    QTest::keyClicks(&text(), QStringLiteral(" more"));
    QTest::keySequence(&text(), QKeySequence::Undo);
    EXPECT_EQ(text().toPlainText().toStdString(), note->text());
    EXPECT_FALSE(text().document()->isUndoAvailable());
    EXPECT_EQ(windowUndos, 0);
}

} // namespace
} // namespace quillery
