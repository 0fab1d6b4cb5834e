#include "document/UndoManager.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

// Steps that add to a counter, each registering its opposite as the document's steps do.
class Counter {
public:
    explicit Counter(UndoManager& manager)
        : m_manager(manager) {}

    void add(int amount, std::string name) {
        m_manager.setActionName(std::move(name));
        change(amount);
    }
    int value() const { return m_value; }

private:
    void change(int amount) {
        m_value += amount;
        m_manager.registerUndo([this, amount] { change(-amount); });
    }

    UndoManager& m_manager;
    int m_value = 0;
};

TEST(UndoManager, ARedoKeepsTheOtherRedoStepsAndANewEditDiscardsThem) {
    UndoManager manager;
    Counter counter(manager);
    counter.add(1, "One");
    counter.add(2, "Two");
    manager.undo();
    manager.undo();
    EXPECT_EQ(counter.value(), 0);
    manager.redo();
    EXPECT_EQ(manager.redoActionName(), "Two");
    EXPECT_EQ(manager.undoActionName(), "One");
    counter.add(5, "Five");
    EXPECT_FALSE(manager.canRedo());
    EXPECT_EQ(counter.value(), 6);
}

TEST(UndoManager, ANameIsTakenByTheNextStepOnlyAndTheListenerHearsEveryChange) {
    UndoManager manager;
    int changes = 0;
    manager.setChangeListener([&] { ++changes; });
    manager.setActionName("Named");
    manager.registerUndo([] {});
    manager.registerUndo([] {});
    EXPECT_EQ(manager.undoActionName(), "");
    manager.undo();
    EXPECT_EQ(manager.undoActionName(), "Named");
    manager.removeAllActions();
    EXPECT_EQ(changes, 4);
    EXPECT_FALSE(manager.canUndo());
}

} // namespace
} // namespace quillery
