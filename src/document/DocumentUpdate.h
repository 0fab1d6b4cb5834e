#pragma once

#include "model/NotebookNode.h"

#include <cstddef>
#include <optional>

namespace quillery {

enum class NodeUpdateType {
    changedText,
    insertedNode,
    destroyedNode,
    movedWithinParent,
    changedParent,
    // The whole tree was replaced (a replay of the package while it was open); only `node` (the
    // root) is set. Views rebuild and find their notes again by identifier.
    reloadedTree,
};

// What one applied record did. Which optional fields are set depends on the kind:
//   insertedNode: newChildIndex; destroyedNode: oldChildIndex;
//   movedWithinParent: both indexes; changedParent: both indexes and both parent identifiers.
// For the other kinds the parent concerned is the node's own parentIdentifier.
struct DocumentUpdate {
    NodeUpdateType type = NodeUpdateType::changedText;
    NodePtr node; // the live node, already in its new state (detached when destroyed)
    std::optional<std::size_t> oldChildIndex;
    std::optional<std::size_t> newChildIndex;
    std::optional<Identifier> oldParentIdentifier;
    std::optional<Identifier> newParentIdentifier;
};

} // namespace quillery
