#include "app/FindBar.h"

#include "app/AppFixture.h"
#include "app/FindResultsModel.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QTest>

namespace quillery {
namespace {

// A shown notebook: "Groceries" (apple pie, pear) and "Garden" (apple tree), the first column
// focused.
class FindBarTest : public AppFixture {
protected:
    FindBarTest()
        : window(*controller.newDocument()) {
        const NodePtr groceries = addNote(window, "Groceries");
        addNote(window, "apple pie", groceries);
        addNote(window, "pear", groceries);
        addNote(window, "apple tree", addNote(window, "Garden"));
        focusFirstColumn(window);
        bar = window.findChild<FindBar*>();
    }

    NoteColumn* column(int depth) const { return window.columnRow()->column(depth); }
    QString selectedText(int depth) const {
        NoteColumn* shown = column(depth);
        return shown && shown->selectedNode()
                   ? QString::fromStdString(shown->selectedNode()->text())
                   : QString();
    }
    void trigger(const char* name) { action(window, name).trigger(); }
    QLineEdit* field() const { return bar->findChild<QLineEdit*>(QStringLiteral("findField")); }
    QLabel* count() const { return bar->findChild<QLabel*>(QStringLiteral("findCount")); }
    // The index is built in the background: the count shows once it is ready.
    void expectCount(const QString& text) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return count()->text() == text; }))
            << count()->text().toStdString();
    }
    void search(const QString& text) {
        trigger("actionFind");
        field()->clear();
        QTest::keyClicks(field(), text);
    }

    DocumentWindow& window;
    FindBar* bar = nullptr;
};

// Escape gives the focus back; Return opens the columns along the path to the result chosen and
// gives that note the keyboard; Find Next and Previous then walk the last search without the bar.
TEST_F(FindBarTest, ReturnOpensTheColumnsAlongThePathAndNextAndPreviousWalkTheResults) {
    ASSERT_NE(bar, nullptr);
    QWidget* before = QApplication::focusWidget();
    search(QStringLiteral("pear"));
    QTest::keyClick(field(), Qt::Key_Escape);
    EXPECT_FALSE(bar->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), before);

    search(QStringLiteral("APPLE"));
    EXPECT_TRUE(field()->hasFocus());
    expectCount(QStringLiteral("2 notes"));

    QTest::keyClick(field(), Qt::Key_Down);
    QTest::keyClick(field(), Qt::Key_Return);

    EXPECT_FALSE(bar->isVisible());
    EXPECT_EQ(selectedText(0), QStringLiteral("Garden"));
    EXPECT_EQ(selectedText(1), QStringLiteral("apple tree"));
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return column(1)->isAncestorOf(QApplication::focusWidget()); }));

    const std::vector<std::pair<const char*, const char*>> steps{
        {"actionFindNext", "apple pie"},
        {"actionFindNext", "apple tree"},
        {"actionFindPrevious", "apple pie"},
    };
    for (const auto& [name, expected] : steps) {
        trigger(name);
        EXPECT_FALSE(bar->isVisible());
        EXPECT_EQ(selectedText(1), QString::fromUtf8(expected)) << name;
    }
}

TEST_F(FindBarTest, ResultsFollowEditsUndoAndDeletion) {
    search(QStringLiteral("apple"));
    expectCount(QStringLiteral("2 notes"));
    Document& document = window.document();
    const NodePtr pear = document.rootNode()->children()[0]->children()[1];

    document.userDidModify(*pear, "apple jam");
    expectCount(QStringLiteral("3 notes"));
    trigger("actionUndo");
    expectCount(QStringLiteral("2 notes"));

    document.userDidMove(*document.rootNode()->children()[1], *document.deletedRootNode());
    expectCount(QStringLiteral("1 note"));
    bar->findChild<QCheckBox*>(QStringLiteral("findIncludeDeleted"))->setChecked(true);
    EXPECT_EQ(count()->text(), QStringLiteral("2 notes"));
    const QModelIndex last =
        bar->findChild<QListView*>(QStringLiteral("findResults"))->model()->index(1, 0);
    EXPECT_TRUE(last.data(FindResultsModel::DeletedRole).toBool());
    EXPECT_EQ(last.data(FindResultsModel::PathRole).toString(),
              QStringLiteral("Deleted notes > Garden"));
}

} // namespace
} // namespace quillery
