#pragma once

#include <functional>
#include <string>
#include <vector>

namespace quillery {

// An undo history of named steps. A step registered while undoing becomes a redo step, one
// registered while redoing becomes an undo step, and one registered otherwise becomes an undo step
// and discards every redo step. Each undo or redo pops the top step and runs its action, which is
// expected to register the opposite step.
class UndoManager {
public:
    using Action = std::function<void()>;

    void registerUndo(Action action);
    // Names the next step registered outside undo and redo (an edit sets the name, then
    // registers). Steps registered while undoing or redoing carry the name of the step that runs.
    void setActionName(std::string name);

    bool canUndo() const;
    bool canRedo() const;
    std::string undoActionName() const;
    std::string redoActionName() const;

    void undo();
    void redo();
    void removeAllActions();

    // Called after every change of the history (register, undo, redo, clear) so menus can follow.
    void setChangeListener(std::function<void()> listener);

private:
    struct Step {
        Action action;
        std::string name;
    };

    void notify();

    std::vector<Step> m_undoSteps;
    std::vector<Step> m_redoSteps;
    std::string m_pendingName;
    std::string m_runningName;
    bool m_undoing = false;
    bool m_redoing = false;
    std::function<void()> m_listener;
};

} // namespace quillery
