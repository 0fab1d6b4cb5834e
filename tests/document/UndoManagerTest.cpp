#include "document/UndoManager.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

// A counter edited through the manager the way the document does it: each action registers its
// opposite.
class Counter {
public:
    explicit Counter(UndoManager& manager)
        : m_manager(manager) {}

    void add(int amount, std::string name) {
        m_value += amount;
        m_manager.setActionName(std::move(name));
        m_manager.registerUndo([this, amount] { take(amount); });
    }
    void take(int amount) {
        m_value -= amount;
        m_manager.registerUndo([this, amount] { give(amount); });
    }
    void give(int amount) {
        m_value += amount;
        m_manager.registerUndo([this, amount] { take(amount); });
    }
    int value() const { return m_value; }

private:
    UndoManager& m_manager;
    int m_value = 0;
};

TEST(UndoManager, UndoAndRedoRunTheirStepsWithTheEditsName) {
    UndoManager manager;
    Counter counter(manager);
    EXPECT_FALSE(manager.canUndo());
    counter.add(1, "One");
    counter.add(10, "Ten");
    EXPECT_EQ(manager.undoActionName(), "Ten");
    manager.undo();
    EXPECT_EQ(counter.value(), 1);
    EXPECT_EQ(manager.undoActionName(), "One");
    EXPECT_EQ(manager.redoActionName(), "Ten");
    manager.undo();
    EXPECT_EQ(counter.value(), 0);
    EXPECT_FALSE(manager.canUndo());
    manager.redo();
    manager.redo();
    EXPECT_EQ(counter.value(), 11);
    EXPECT_FALSE(manager.canRedo());
    EXPECT_EQ(manager.undoActionName(), "Ten");
}

TEST(UndoManager, ANewEditDiscardsRedoButARedoDoesNot) {
    UndoManager manager;
    Counter counter(manager);
    counter.add(1, "One");
    counter.add(2, "Two");
    manager.undo();
    manager.undo();
    manager.redo();
    EXPECT_TRUE(manager.canRedo());
    counter.add(5, "Five");
    EXPECT_FALSE(manager.canRedo());
    EXPECT_EQ(counter.value(), 6);
}

TEST(UndoManager, ReportsUndoingAndRedoingToTheRunningAction) {
    UndoManager manager;
    bool sawUndoing = false;
    manager.registerUndo([&] { sawUndoing = manager.isUndoing() && !manager.isRedoing(); });
    manager.undo();
    EXPECT_TRUE(sawUndoing);
    EXPECT_FALSE(manager.isUndoing());
    EXPECT_FALSE(manager.canRedo()); // the action registered nothing
}

TEST(UndoManager, NameIsConsumedByTheNextStepOnly) {
    UndoManager manager;
    manager.setActionName("Named");
    manager.registerUndo([] {});
    manager.registerUndo([] {});
    EXPECT_EQ(manager.undoActionName(), "");
    manager.undo();
    EXPECT_EQ(manager.undoActionName(), "Named");
}

TEST(UndoManager, ListenerHearsEveryChangeOfTheHistory) {
    UndoManager manager;
    Counter counter(manager);
    int changes = 0;
    manager.setChangeListener([&] { ++changes; });
    counter.add(1, "One");
    manager.undo();
    manager.redo();
    manager.removeAllActions();
    EXPECT_EQ(changes, 4);
    EXPECT_FALSE(manager.canUndo());
    EXPECT_FALSE(manager.canRedo());
}

} // namespace
} // namespace quillery
