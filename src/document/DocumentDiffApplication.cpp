// Document::applyDiff(): how each record form changes the tree, and what it announces.
#include "base/Diagnostics.h"
#include "document/Document.h"

namespace quillery {

namespace {

// Where a node goes among the children when "before" may name one of them: there, or at the end.
std::size_t placementIndex(const NotebookNode& parent, const PlainDictionary& payload,
                           const NodeIndex& index) {
    if (const PlainValue* before = payload.find("before"))
        if (const Identifier* sibling = before->textIdentifier())
            if (auto found = parent.indexOfChild(*sibling, index.find(*sibling)))
                return *found;
    return parent.children().size();
}

// A node's parent pointer is set exactly while it stands in that parent's children (and the
// parent is indexed), which makes it the same node as the index finds under the identifier.
void insertChild(NotebookNode& parent, std::size_t index, NodePtr child) {
    child->setParentNode(&parent);
    auto& children = parent.children();
    children.insert(children.begin() + static_cast<std::ptrdiff_t>(index), std::move(child));
}

NodePtr takeChild(NotebookNode& parent, std::size_t index) {
    auto& children = parent.children();
    NodePtr child = std::move(children[index]);
    children.erase(children.begin() + static_cast<std::ptrdiff_t>(index));
    child->setParentNode(nullptr);
    return child;
}

// Takes the target's entry out of the parent's children for good. The entry may be an older node
// of the target's identifier that was indexed over since; that one leaves the tree, and its
// children no longer stand under a node of it. Returns whether that happened.
bool dropChild(NotebookNode& parent, std::size_t index, const NotebookNode& target) {
    const NodePtr dropped = takeChild(parent, index);
    if (dropped.get() == &target)
        return false;
    for (const NodePtr& child : dropped->children())
        child->setParentNode(nullptr);
    return true;
}

} // namespace

// What a change record did to positions, gathered over its keys.
struct Document::ChangeOutcome {
    std::optional<std::size_t> oldIndex;
    std::optional<std::size_t> newIndex;
    std::optional<Identifier> oldParent;
    std::optional<Identifier> newParent;
};

void Document::applyDiff(const DocumentDiff& diff, bool withNotification) {
    std::optional<DocumentUpdate> update;
    if (const NodePtr* found = m_nodeLookup.findShared(diff.identifier)) {
        NodePtr existing = *found; // kept alive: a destroy takes it out of the index
        const PlainValue* destroy = diff.payload.find("destroy");
        std::optional<bool> destroyFlag = destroy ? destroy->boolValue() : std::nullopt;
        if (!destroyFlag)
            update = applyChange(existing, diff.payload);
        else if (*destroyFlag)
            update = applyDestroy(existing);
    } else {
        update = applyCreation(diff);
    }
    if (update && withNotification)
        announce(*update);
}

std::optional<DocumentUpdate> Document::applyCreation(const DocumentDiff& diff) {
    NodePtr created = NotebookNodeFromPlainDictionary(diff.identifier, diff.payload);
    if (!created)
        return std::nullopt;
    NotebookNode* parent = m_nodeLookup.find(created->parentIdentifier());
    if (!parent) {
        diagnostics::writeLine(kCouldNotFindParentLine);
        return std::nullopt;
    }
    const std::size_t index = placementIndex(*parent, diff.payload, m_nodeLookup);
    insertChild(*parent, index, created);
    addLookup(created);
    if (created->imageIdentifier())
        m_images.bringBack(*created->imageIdentifier());
    return DocumentUpdate{NodeUpdateType::insertedNode,
                          std::move(created),
                          std::nullopt,
                          index,
                          std::nullopt,
                          std::nullopt};
}

std::optional<DocumentUpdate> Document::applyDestroy(const NodePtr& target) {
    diagnostics::writeLine("Removing node...");
    // The two roots stay for the life of the document, whatever a journal says.
    if (isRootIdentifier(target->identifier()))
        return std::nullopt;
    NotebookNode* parent = parentOf(*target);
    std::optional<std::size_t> index =
        parent ? parent->indexOfChild(target->identifier(), target.get()) : std::nullopt;
    if (index)
        dropChild(*parent, *index, *target);
    m_nodeLookup.erase(target->identifier());
    ++m_removals;
    // Its children stay with it but no longer stand under an indexed node.
    for (const NodePtr& child : target->children())
        child->setParentNode(nullptr);
    if (target->imageIdentifier())
        m_images.holdAside(*target->imageIdentifier());
    // A node that stood in no child list was shown nowhere, so there is nothing to announce.
    if (!index)
        return std::nullopt;
    return DocumentUpdate{
        NodeUpdateType::destroyedNode, target, index, std::nullopt, std::nullopt, std::nullopt};
}

std::optional<DocumentUpdate> Document::applyChange(const NodePtr& target,
                                                    const PlainDictionary& payload) {
    ChangeOutcome outcome;
    const bool reparents = payload.contains("parent");
    for (const auto& [key, value] : payload) {
        if (key == "timestamp" || key == "identifier") {
            continue;
        } else if (key == "text") {
            if (value.isText())
                target->setText(*value.text());
            else
                diagnostics::writeLine("Bad text.");
        } else if (key == "before" || key == "after") {
            // With "parent", "before" places the node in its new parent, and "after" (never
            // written by this system) is ignored.
            if (!reparents)
                reorder(*target, key, value, outcome);
        } else if (key == "parent") {
            reparent(target, value, payload, outcome);
        } else if (DeletionOrigins::isKey(key)) {
            continue; // read by reparent()
        } else {
            diagnostics::writeLine("Unrecognized diff");
        }
    }
    DocumentUpdate update{NodeUpdateType::changedText,
                          target,
                          std::nullopt,
                          std::nullopt,
                          std::nullopt,
                          std::nullopt};
    if (outcome.oldIndex && outcome.newIndex) {
        update.oldChildIndex = outcome.oldIndex;
        update.newChildIndex = outcome.newIndex;
        if (outcome.oldParent && outcome.newParent) {
            update.type = NodeUpdateType::changedParent;
            update.oldParentIdentifier = std::move(outcome.oldParent);
            update.newParentIdentifier = std::move(outcome.newParent);
        } else {
            update.type = NodeUpdateType::movedWithinParent;
        }
    }
    return update;
}

void Document::reorder(NotebookNode& target, const std::string& key, const PlainValue& value,
                       ChangeOutcome& outcome) {
    const Identifier* siblingValue = value.textIdentifier();
    if (!siblingValue)
        return;
    NotebookNode* parent = parentOf(target);
    if (!parent)
        return;
    std::optional<std::size_t> index = parent->indexOfChild(target.identifier(), &target);
    if (!index)
        return;
    NodePtr moving = takeChild(*parent, *index);
    outcome.oldIndex = index;
    const Identifier& sibling = *siblingValue;
    std::size_t insertAt = parent->children().size();
    if (auto siblingIndex = parent->indexOfChild(sibling, m_nodeLookup.find(sibling))) {
        insertAt = key == "before" ? *siblingIndex : *siblingIndex + 1;
    } else {
        std::string line = "Uh-oh: did move ";
        line += key;
        line += " but siblingIdentifier is not found here ";
        sibling.appendTo(line);
        diagnostics::writeLine(line);
    }
    insertChild(*parent, insertAt, std::move(moving));
    outcome.newIndex = insertAt;
}

void Document::reparent(const NodePtr& target, const PlainValue& value,
                        const PlainDictionary& payload, ChangeOutcome& outcome) {
    const Identifier* newParentValue = value.textIdentifier();
    if (!newParentValue)
        return;
    const Identifier newParentIdentifier = *newParentValue;
    // The roots never move, whatever a journal says.
    if (isRootIdentifier(target->identifier()))
        return;
    // Checked before anything moves, so that a refused move leaves the node where it was and the
    // tree whole: two machines that moved two notes into each other must not cut a branch off.
    NotebookNode* destination = m_nodeLookup.find(newParentIdentifier);
    if (!destination) {
        diagnostics::writeLine(kCouldNotFindParentLine);
        return;
    }
    // Walked up even for a note without children: notes left behind when an earlier node of its
    // identifier was destroyed still name it as their parent.
    if (liesWithin(*destination, target->identifier())) {
        diagnostics::writeLine("Refusing to move a note into itself.");
        return;
    }
    if (NotebookNode* source = parentOf(*target)) {
        outcome.oldParent = source->identifier();
        if (auto index = source->indexOfChild(target->identifier(), target.get())) {
            if (dropChild(*source, *index, *target))
                ++m_removals;
            outcome.oldIndex = index;
        }
    }
    target->setParentIdentifier(newParentIdentifier);
    const std::size_t insertAt = placementIndex(*destination, payload, m_nodeLookup);
    insertChild(*destination, insertAt, target);
    outcome.newIndex = insertAt;
    outcome.newParent = destination->identifier();
    m_deletionOrigins.noteMoved(target->identifier(), newParentIdentifier, payload);
}

} // namespace quillery
