#include "KeyScript.h"
#include "QtPrinters.h"
#include "app/AppFixture.h"
#include "app/DeletedNotesDialog.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>
#include <QTreeWidget>

namespace quillery {
namespace {

using NoteCommandsTest = OutlineWindowFixture;

struct KeyCase {
    const char* name;
    const char* keys;
    const char* outline;
    const char* selected; // in the focused column afterwards
    int depth;            // of the focused column
    const char* undo;     // the Edit menu's Undo command afterwards
};

// Alt+Shift and an arrow moves the note; an arrow alone, or Ctrl+N and Ctrl+P in a column before
// the window's New Notebook, moves the keyboard.
const KeyCase kKeyCases[] = {
    {"RightAndLeftMoveTheKeyboard", "Right Left Right", "A(a1 a2) B C", "a1", 1, "&Undo"},
    {"ControlNAndPStepInTheColumn", "Ctrl+N Ctrl+N Ctrl+P", "A(a1 a2) B C", "B", 0, "&Undo"},
    {"DownAmongSiblings", "Alt+Shift+Down", "B A(a1 a2) C", "A", 0, "&Undo Reorder Note"},
    {"UpFromTheTopStays", "Alt+Shift+Up", "A(a1 a2) B C", "A", 0, "&Undo"},
    {"UpAndDownAgain", "Down Down Alt+Shift+Up Alt+Shift+Up", "C A(a1 a2) B", "C", 0,
     "&Undo Reorder Note"},
    {"DownFromTheBottomStays", "Down Down Alt+Shift+Down", "A(a1 a2) B C", "C", 0, "&Undo"},
    {"InUnderTheNoteAbove", "Down Alt+Shift+Right", "A(a1 a2 B) C", "B", 1, "&Undo Move Note"},
    {"InFromTheFirstRowStays", "Alt+Shift+Right", "A(a1 a2) B C", "A", 0, "&Undo"},
    {"OutAfterItsParent", "Right Down Alt+Shift+Left", "A(a1) a2 B C", "a2", 0, "&Undo Move Note"},
    {"OutFromTheTopLevelStays", "Alt+Shift+Left", "A(a1 a2) B C", "A", 0, "&Undo"},
    {"OutAndInAgain", "Right Alt+Shift+Left Alt+Shift+Right", "A(a2 a1) B C", "a1", 1,
     "&Undo Move Note"},
    {"UndoneAtOnceSelectingTheNoteBack", "Down Alt+Shift+Right Ctrl+Z", "A(a1 a2) B C", "B", 0,
     "&Undo"},
};

class KeyCommands : public NoteCommandsTest, public ::testing::WithParamInterface<KeyCase> {};

TEST_P(KeyCommands, ChangeTheOutlineAndTheSelectionFollows) {
    const KeyCase& test = GetParam();
    testing::pressKeys(test.keys);
    EXPECT_EQ(outline(*window->document().rootNode()), test.outline);
    NoteColumn* column = NoteColumn::containing(QApplication::focusWidget());
    ASSERT_NE(column, nullptr);
    EXPECT_EQ(column->depth(), test.depth);
    ASSERT_NE(column->selectedNode(), nullptr);
    EXPECT_EQ(column->selectedNode()->text(), test.selected);
    EXPECT_EQ(action(*window, "actionUndo").text(), QString::fromLatin1(test.undo));
    EXPECT_EQ(controller.windows().size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Cases, KeyCommands, ::testing::ValuesIn(kKeyCases),
                         [](const auto& caseInfo) { return std::string(caseInfo.param.name); });

TEST_F(NoteCommandsTest, DeletedNotesShowTheLatestFirstAndReturnPutsOneBack) {
    Document& document = window->document();
    const NodePtr a = document.rootNode()->children()[0];
    document.userDidDelete(*a->children()[1]);
    document.userDidDelete(*document.rootNode()->children()[1]);

    testing::pressKeys("Ctrl+Shift+D");
    auto* dialog = window->findChild<DeletedNotesDialog*>();
    ASSERT_NE(dialog, nullptr);
    QTreeWidget* list = dialog->findChild<QTreeWidget*>();
    ASSERT_EQ(list->topLevelItemCount(), 2);
    EXPECT_EQ(list->topLevelItem(0)->text(0), QStringLiteral("B"));
    EXPECT_EQ(list->topLevelItem(0)->text(1), QStringLiteral("Top level"));
    EXPECT_EQ(list->topLevelItem(1)->text(1), QStringLiteral("A"));

    QTest::keyClick(list, Qt::Key_Return);

    EXPECT_EQ(outline(*document.rootNode()), "A(a1) B C");
    ASSERT_EQ(list->topLevelItemCount(), 1);
    EXPECT_EQ(list->topLevelItem(0)->text(0), QStringLiteral("a2"));
    action(*window, "actionUndo").trigger();
    EXPECT_EQ(outline(*document.rootNode()), "A(a1) C");
    EXPECT_TRUE(QTest::qWaitFor([&] { return list->topLevelItemCount() == 2; }));
}

TEST_F(NoteCommandsTest, TheMenuKeyOpensTheRowsCommandsOnTheSelectedNote) {
    QContextMenuEvent request(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QApplication::sendEvent(QApplication::focusWidget(), &request);

    QMenu* menu = window->findChild<QMenu*>(QStringLiteral("noteContextMenu"));
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->actions().contains(&action(*window, "actionDeleteNote")));
    EXPECT_TRUE(menu->actions().contains(&action(*window, "actionEditNote")));
    menu->close();
}

} // namespace
} // namespace quillery
