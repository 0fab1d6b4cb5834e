#include "document/UndoManager.h"

#include <functional>
#include <gtest/gtest.h>

namespace quillery {
namespace {

// Undoing and redoing every step is left to the random editing sessions; these are the rules
// they cannot see.
TEST(UndoManager, ANameIsTakenByTheNextStepOnlyAndANewStepDiscardsTheRedoSteps) {
    UndoManager manager;
    int changes = 0;
    manager.setChangeListener([&] { ++changes; });
    // A step that registers its opposite when undone, as the document's steps do.
    std::function<void()> step = [&] {
        manager.registerUndo(step);
    };
    manager.setActionName("Named");
    manager.registerUndo(step);
    manager.registerUndo(step);
    EXPECT_EQ(manager.undoActionName(), "");
    manager.undo();
    EXPECT_EQ(manager.undoActionName(), "Named");
    EXPECT_TRUE(manager.canRedo());
    manager.registerUndo(step);
    EXPECT_FALSE(manager.canRedo());
    manager.removeAllActions();
    EXPECT_EQ(changes, 5);
    EXPECT_FALSE(manager.canUndo());
}

} // namespace
} // namespace quillery
