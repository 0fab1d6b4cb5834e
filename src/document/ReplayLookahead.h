#pragma once

#include "document/NodeIndex.h"
#include "model/DocumentDiff.h"

#include <array>
#include <cstddef>
#include <vector>

namespace quillery {

// Asks the processor, a few records ahead of a replay, for the memory that applying those records
// will touch: the index slots of the nodes they name, the nodes, their parents and child lists.
// Every stage needs what the stage before brought in (the slot names the node, the node names its
// parent), so the stages are spaced by a few records: long enough for the memory to arrive, short
// enough for it to stay cached. What a stage finds is kept for the next in a small ring, so that
// each identifier is looked up once on its way.
class ReplayLookahead {
public:
    ReplayLookahead(const NodeIndex& index, const std::vector<DocumentDiff>& diffs);

    // Called before the record at `at` is applied.
    void advance(std::size_t at);
    // Called after a record took nodes out of the tree: the nodes found ahead may be gone.
    void forgetFoundNodes();

private:
    // A record's target is its own node; the named nodes are its new parent and its neighbours.
    static constexpr std::size_t kMaxNamed = 3;
    struct Entry {
        NotebookNode* node = nullptr;
        NotebookNode* parent = nullptr;
        std::array<const Identifier*, kMaxNamed> namedIdentifiers{};
        std::array<NotebookNode*, kMaxNamed> namedNodes{};
        std::size_t namedCount = 0;
    };

    Entry& entry(std::size_t record) { return m_ring[record % m_ring.size()]; }
    NotebookNode* target(std::size_t record);
    void prefetchSlots(std::size_t record);
    void findNodes(std::size_t record);
    void prefetchParentSlots(std::size_t record);
    void findParents(std::size_t record);
    void prefetchChildLists(std::size_t record);

    const NodeIndex& m_index;
    const std::vector<DocumentDiff>& m_diffs;
    std::array<Entry, 32> m_ring{};
};

} // namespace quillery
