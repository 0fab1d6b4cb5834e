// Deleting notes and putting them back where they were.
#include "document/Document.h"

namespace quillery {

void Document::userDidDelete(NotebookNode& node, const char* actionName) {
    NotebookNode* parent = parentOf(node);
    if (!parent || !m_deletedRootNode)
        return;
    PlainDictionary payload;
    payload.set("parent", m_deletedRootNode->identifier());
    DeletionOrigins::describe(payload, *parent, node);
    record(DocumentDiff(now(), node.identifier(), std::move(payload)));
    registerUserStep(actionName);
}

bool Document::isInNotebook(const NotebookNode& node) const {
    const NotebookNode* current = &node;
    // Bounded like every walk up, so a cycle from a foreign journal ends it.
    for (std::size_t steps = 0; current && steps <= m_nodeLookup.size(); ++steps) {
        if (current == m_rootNode.get())
            return true;
        current = current->parentNode();
    }
    return false;
}

Document::Place Document::putBackPlace(const NotebookNode& node) const {
    const DeletionOrigin* origin = m_deletionOrigins.find(node.identifier());
    NodePtr parent = origin ? this->node(origin->parent) : nullptr;
    if (!parent || !isInNotebook(*parent))
        return {m_rootNode, std::nullopt};
    if (auto before = origin->before ? parent->indexOfChild(*origin->before) : std::nullopt)
        return {parent, before};
    if (auto after = origin->after ? parent->indexOfChild(*origin->after) : std::nullopt;
        after && *after + 1 < parent->children().size())
        return {parent, *after + 1};
    return {parent, std::nullopt};
}

void Document::userDidPutBack(NotebookNode& node) {
    const Place place = putBackPlace(node);
    move(node, *place.parent, place.index);
    registerUserStep("Put Back Note");
}

} // namespace quillery
