#include "document/UndoManager.h"

#include <utility>

namespace quillery {

namespace {

// Sets a flag for the lifetime of the object, also when the action throws.
class FlagScope {
public:
    explicit FlagScope(bool& flag)
        : m_flag(flag) {
        m_flag = true;
    }
    ~FlagScope() { m_flag = false; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& m_flag;
};

} // namespace

void UndoManager::registerUndo(Action action) {
    if (m_undoing) {
        m_redoSteps.push_back({std::move(action), m_runningName});
        return;
    }
    if (m_redoing) {
        m_undoSteps.push_back({std::move(action), m_runningName});
        return;
    }
    m_undoSteps.push_back({std::move(action), std::exchange(m_pendingName, {})});
    m_redoSteps.clear();
    notify();
}

void UndoManager::setActionName(std::string name) {
    m_pendingName = std::move(name);
}

bool UndoManager::canUndo() const {
    return !m_undoSteps.empty();
}

bool UndoManager::canRedo() const {
    return !m_redoSteps.empty();
}

std::string UndoManager::undoActionName() const {
    return m_undoSteps.empty() ? std::string() : m_undoSteps.back().name;
}

std::string UndoManager::redoActionName() const {
    return m_redoSteps.empty() ? std::string() : m_redoSteps.back().name;
}

void UndoManager::undo() {
    if (m_undoSteps.empty() || m_undoing || m_redoing)
        return;
    Step step = std::move(m_undoSteps.back());
    m_undoSteps.pop_back();
    {
        FlagScope scope(m_undoing);
        m_runningName = step.name;
        step.action();
    }
    notify();
}

void UndoManager::redo() {
    if (m_redoSteps.empty() || m_undoing || m_redoing)
        return;
    Step step = std::move(m_redoSteps.back());
    m_redoSteps.pop_back();
    {
        FlagScope scope(m_redoing);
        m_runningName = step.name;
        step.action();
    }
    notify();
}

void UndoManager::removeAllActions() {
    m_undoSteps.clear();
    m_redoSteps.clear();
    m_pendingName.clear();
    notify();
}

void UndoManager::setChangeListener(std::function<void()> listener) {
    m_listener = std::move(listener);
}

void UndoManager::notify() {
    if (m_listener)
        m_listener();
}

} // namespace quillery
