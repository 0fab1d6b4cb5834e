#pragma once

#include "base/HugePageAllocator.h"
#include "model/NotebookNode.h"

#include <cstddef>
#include <vector>

namespace quillery {

// The document's index from identifier to node. Open addressing with linear probing in one flat
// array: a lookup reads one or two neighbouring cache lines, and a replay can ask for the slot of
// a record it will apply soon, so that memory latency overlaps instead of adding up.
class NodeIndex {
public:
    NodeIndex();

    // The node indexed under the identifier, or null.
    NotebookNode* find(const Identifier& identifier) const {
        return m_slots[position(identifier)].node.get();
    }
    // The same as the owning pointer; null when absent. Valid until the index next changes.
    const NodePtr* findShared(const Identifier& identifier) const;
    // Indexes the node under its own identifier, replacing what was indexed there.
    void insertOrAssign(NodePtr node);
    bool erase(const Identifier& identifier);
    // Makes room for this many nodes in all, so that indexing them moves nothing.
    void reserve(std::size_t count);
    std::size_t size() const { return m_size; }

    // Asks the processor to fetch the slot where the identifier would be.
    void prefetch(const Identifier& identifier) const {
        __builtin_prefetch(&m_slots[home(identifier)]);
    }

private:
    struct Slot {
        Identifier key;
        NodePtr node; // null while the slot is free
    };

    std::size_t home(const Identifier& identifier) const { return identifier.hash() >> m_shift; }
    std::size_t next(std::size_t slot) const { return (slot + 1) & (m_slots.size() - 1); }
    // The slot holding the identifier, or the free slot where it would go.
    std::size_t position(const Identifier& identifier) const {
        std::size_t slot = home(identifier);
        while (m_slots[slot].node && !(m_slots[slot].key == identifier))
            slot = next(slot);
        return slot;
    }
    void grow();
    void rehash(std::size_t slotCount);

    std::vector<Slot, HugePageAllocator<Slot>> m_slots;
    std::size_t m_size = 0;
    unsigned m_shift; // 64 minus log2 of the slot count: the hash's top bits pick the slot
};

} // namespace quillery
