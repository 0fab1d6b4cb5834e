// Document's edit operations, reverse records, undo and redo.
#include "document/Document.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <unordered_set>

namespace quillery {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// A caller broke an operation's precondition; going on would record a wrong history.
[[noreturn]] void programmingError(const char* what) {
    std::fprintf(stderr, "Quillery: programming error: %s\n", what);
    std::abort();
}

// Restores journaling when an undo ends, also when an observer throws.
class JournalingPause {
public:
    explicit JournalingPause(bool& enabled)
        : m_enabled(enabled) {
        m_enabled = false;
    }
    ~JournalingPause() { m_enabled = true; }
    JournalingPause(const JournalingPause&) = delete;
    JournalingPause& operator=(const JournalingPause&) = delete;

private:
    bool& m_enabled;
};

} // namespace

void Document::record(DocumentDiff diff) {
    m_lastEditJournaled = false;
    if (m_journalingEnabled) {
        // The reverse is read off the tree as it is before the change.
        Reversal reversal{reverseDiff(diff), m_diffs.size()};
        appendDiff(diff);
        m_undoDiffs.push_back(std::move(reversal));
        m_lastEditJournaled = true;
    }
    applyDiff(diff, true);
}

void Document::modify(NotebookNode& node, std::string text) {
    PlainDictionary payload;
    payload.set("text", std::move(text));
    record(DocumentDiff(now(), node.identifier(), std::move(payload)));
}

void Document::add(const NotebookNode& child, const NotebookNode& toNode, long at) {
    PlainDictionary payload = PlainDictionaryFromNotebookNode(child);
    const auto& siblings = toNode.children();
    if (at >= 0 && static_cast<std::size_t>(at) < siblings.size())
        payload.set("before", siblings[static_cast<std::size_t>(at)]->identifier());
    record(DocumentDiff(now(), child.identifier(), std::move(payload)));
}

void Document::move(NotebookNode& child, const NotebookNode& toParentNode,
                    std::optional<std::size_t> at) {
    const auto& siblings = toParentNode.children();
    if (at && *at >= siblings.size())
        programmingError("move(child:toParentNode:at:) index beyond the new parent's children");
    PlainDictionary payload;
    payload.set("parent", toParentNode.identifier());
    if (at)
        payload.set("before", siblings[*at]->identifier());
    record(DocumentDiff(now(), child.identifier(), std::move(payload)));
}

void Document::move(NotebookNode& child, std::size_t to) {
    m_lastEditJournaled = false;
    NodePtr parent = node(child.parentIdentifier());
    if (!parent || parent->children().empty())
        return;
    const auto& siblings = parent->children();
    PlainDictionary payload;
    if (to < siblings.size())
        payload.set("before", siblings[to]->identifier());
    else
        payload.set("after", siblings.back()->identifier());
    record(DocumentDiff(now(), child.identifier(), std::move(payload)));
}

void Document::userDidModify(NotebookNode& node, std::string text) {
    modify(node, std::move(text));
    registerUserStep("Edit Text");
}

void Document::userDidAdd(const NotebookNode& child, const NotebookNode& toNode, long at) {
    add(child, toNode, at);
    registerUserStep("Add Note");
}

void Document::userDidMove(NotebookNode& child, const NotebookNode& toParent,
                           std::optional<std::size_t> at) {
    move(child, toParent, at);
    registerUserStep(toParent.identifier() == deletedRootIdentifier() ? "Delete Note"
                                                                      : "Move Note");
}

void Document::userDidMove(NotebookNode& child, std::size_t to) {
    move(child, to);
    registerUserStep("Reorder Note");
}

void Document::registerUserStep(const char* actionName) {
    // An edit that was not journaled (none was made, or an observer edited during an undo) has
    // no reverse on the stack, so an undo step for it would undo something else.
    if (!m_lastEditJournaled || !m_undoManager)
        return;
    m_undoManager->setActionName(actionName);
    registerUndo();
}

DocumentDiff Document::reverseDiff(const DocumentDiff& forward) const {
    const PlainDictionary& payload = forward.payload;
    PlainDictionary reverse;
    NodePtr target = node(forward.identifier);
    if (!target) {
        if (!payload.contains("text") || !payload.contains("parent"))
            programmingError("reverseDiff: a creation without text and parent");
        reverse.set("destroy", true);
        return DocumentDiff(now(), forward.identifier, std::move(reverse));
    }
    const PlainValue* text = payload.find("text");
    const PlainValue* newParent = payload.find("parent");
    if (payload.size() == 1 && text && text->isText()) {
        reverse.set("text", target->text());
        return DocumentDiff(now(), forward.identifier, std::move(reverse));
    }
    const bool isReparent = newParent && newParent->isText();
    if (!isReparent && !payload.contains("before") && !payload.contains("after"))
        programmingError("reverseDiff: a record form that has no reverse");
    if (isReparent && !node(*newParent->identifier()))
        programmingError("reverseDiff: a move to a parent that is not in the tree");
    NodePtr parent = node(target->parentIdentifier());
    const std::size_t index =
        parent ? parent->indexOfChild(target->identifier()).value_or(kNone) : kNone;
    if (index == kNone)
        programmingError("reverseDiff: a move of a node that is not in the tree");
    const auto& siblings = parent->children();
    if (isReparent)
        reverse.set("parent", parent->identifier());
    if (index + 1 < siblings.size())
        reverse.set("before", siblings[index + 1]->identifier());
    else if (!isReparent)
        reverse.set("after", siblings.back()->identifier());
    return DocumentDiff(now(), forward.identifier, std::move(reverse));
}

void Document::userDidEditTogether(const char* actionName, const std::function<void()>& edits) {
    const std::size_t before = m_undoDiffs.size();
    edits();
    const std::size_t records = m_undoDiffs.size() - before;
    if (records == 0 || !m_undoManager)
        return;
    m_undoManager->setActionName(actionName);
    m_undoManager->registerUndo([this, records] { undo(records); });
}

void Document::registerUndo() {
    if (m_undoManager)
        m_undoManager->registerUndo([this] { undo(); });
}

std::optional<UndoObstacle> Document::undoObstacle(std::size_t records) const {
    std::unordered_set<Identifier, IdentifierHash> takenOut;
    for (auto at = m_undoDiffs.rbegin();
         at != m_undoDiffs.rbegin() + static_cast<std::ptrdiff_t>(records); ++at) {
        const DocumentDiff& reverse = at->reverse;
        const NotebookNode* target = m_nodeLookup.find(reverse.identifier);
        if (!target)
            return UndoObstacle::noteGone;
        if (reverse.payload.contains("destroy")) {
            for (const NodePtr& child : target->children())
                if (!takenOut.contains(child->identifier()))
                    return UndoObstacle::notesAddedBeneath;
            takenOut.insert(reverse.identifier);
        }
        if (const PlainValue* parent = reverse.payload.find("parent"))
            if (const Identifier* place = parent->textIdentifier())
                if (!m_nodeLookup.find(*place) || takenOut.contains(*place))
                    return UndoObstacle::placeGone;
    }
    return std::nullopt;
}

void Document::undo(std::size_t records) {
    records = std::min(records, m_undoDiffs.size());
    if (const std::optional<UndoObstacle> obstacle = undoObstacle(records)) {
        m_undoDiffs.erase(m_undoDiffs.end() - static_cast<std::ptrdiff_t>(records),
                          m_undoDiffs.end());
        if (m_undoRefused)
            m_undoRefused(*obstacle);
        return;
    }
    for (std::size_t undone = 0; undone < records; ++undone) {
        Reversal reversal = std::move(m_undoDiffs.back());
        m_undoDiffs.pop_back();
        {
            JournalingPause pause(m_journalingEnabled);
            applyDiff(reversal.reverse, true);
        }
        if (reversal.logIndex < m_diffs.size()) {
            const auto forward = m_diffs.begin() + static_cast<std::ptrdiff_t>(reversal.logIndex);
            m_redoDiffs.push_back(std::move(*forward));
            m_diffs.erase(forward);
        }
        --m_changeCount;
    }
    if (records > 0 && m_undoManager)
        m_undoManager->registerUndo([this, records] { redo(records); });
}

void Document::redo(std::size_t records) {
    std::size_t redone = 0;
    for (; redone < records && !m_redoDiffs.empty(); ++redone) {
        DocumentDiff forward = std::move(m_redoDiffs.back());
        m_redoDiffs.pop_back();
        if (m_journalingEnabled) {
            m_undoDiffs.push_back({reverseDiff(forward), m_diffs.size()});
            appendDiff(forward);
        }
        applyDiff(forward, true);
    }
    if (redone > 0 && m_undoManager)
        m_undoManager->registerUndo([this, redone] { undo(redone); });
}

} // namespace quillery
