#include "columns/NoteEditorPanel.h"

#include "KeyScript.h"
#include "QtPrinters.h"
#include "columns/NoteTextEdit.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QPlainTextEdit>
#include <QTest>
#include <QTextBlock>

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

TEST_F(NoteEditorPanelTest, ControlReturnReportsTheWholeTextAndEscapeCancels) {
    EXPECT_TRUE(text().hasFocus());
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

// A paragraph too long to lay out again on every key is shown as blocks of kPiece characters;
// where one block continues another, the keys act as on the note's text.
struct LongParagraphEdit {
    const char* name;
    int anchor, position; // in the editor: 1000 ends the first block, 1001 starts the second
    const char* keys;
    const char* clipboard; // put on the clipboard before, or what it must hold after
    std::size_t at, erased;
    const char* inserted; // the change to the note's text
};

class LongParagraphTest : public NoteEditorPanelTest,
                          public ::testing::WithParamInterface<LongParagraphEdit> {};

TEST_P(LongParagraphTest, EditsTheNotesText) {
    const LongParagraphEdit& edit = GetParam();
    std::string long_;
    for (int i = 0; long_.size() <= NoteTextEdit::kLongParagraph; ++i)
        long_ += static_cast<char>('a' + i % 26);
    const std::string original = long_ + "\nend";
    note->setText(original);
    editor->setNote(note);
    ASSERT_EQ(editor->text(), original);
    ASSERT_EQ(text().document()->findBlockByNumber(1).position(), NoteTextEdit::kPiece + 1);
    const bool pasting = std::string_view(edit.keys) == "Ctrl+V";
    if (pasting)
        QApplication::clipboard()->setText(QString::fromUtf8(edit.clipboard));
    QTextCursor cursor = text().textCursor();
    cursor.setPosition(edit.anchor);
    cursor.setPosition(edit.position, QTextCursor::KeepAnchor);
    text().setTextCursor(cursor);
    testing::pressKeys(edit.keys);
    std::string expected = original;
    expected.replace(edit.at, edit.erased, edit.inserted);
    EXPECT_EQ(editor->text(), expected);
    if (!pasting && *edit.clipboard) {
        EXPECT_EQ(QApplication::clipboard()->text().toStdString(), edit.clipboard);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Keys, LongParagraphTest,
    ::testing::Values(
        LongParagraphEdit{"BackspaceAtAContinuation", 1001, 1001, "Backspace", "", 999, 1, ""},
        LongParagraphEdit{"DeleteBeforeAContinuation", 1000, 1000, "Delete", "", 1000, 1, ""},
        LongParagraphEdit{"ReturnAtAContinuation", 1001, 1001, "Return", "", 1000, 0, "\n"},
        LongParagraphEdit{"ReturnBeforeAContinuation", 1000, 1000, "Return", "", 1000, 0, "\n"},
        LongParagraphEdit{"Typing", 1001, 1001, "Z", "", 1000, 0, "z"},
        LongParagraphEdit{"PastingLines", 1001, 1001, "Ctrl+V", "1\n2", 1000, 0, "1\n2"},
        LongParagraphEdit{"CuttingAcross", 999, 1003, "Ctrl+X", "lmn", 999, 3, ""},
        LongParagraphEdit{"CopyingAcross", 998, 1002, "Ctrl+C", "klm", 0, 0, ""},
        LongParagraphEdit{"UndoingACutAcross", 999, 1003, "Ctrl+X Ctrl+Z", "", 0, 0, ""}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace quillery
