#pragma once

#include "model/DocumentDiff.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace quillery {

// Records a replay holds back until the note they need exists: a creation or a move whose parent
// has not been created yet, a change of a note not created yet, and every later record about a
// note that already has one held back (so one note's records still apply in their order).
// Records are kept in slots that never move; a slot is handed out once and stays until the
// replay ends.
class ParkedRecords {
public:
    bool empty() const { return m_waiting.empty(); }

    // Keeps the record in a new slot; `sequence` is its place in the merged list.
    std::size_t keep(DocumentDiff diff, std::uint64_t sequence);
    DocumentDiff& record(std::size_t slot) { return m_slots[slot].diff; }
    std::uint64_t sequence(std::size_t slot) const { return m_slots[slot].sequence; }
    bool done(std::size_t slot) const { return m_slots[slot].done; }
    void markDone(std::size_t slot);

    // Holds the slot until a note named `awaited` is created.
    void wait(std::size_t slot, const Identifier& awaited);
    // The note a record about `node` must wait for because an earlier record about it waits, or
    // null.
    const Identifier* blockedBehind(const Identifier& node) const;
    // Takes the slots waiting for the note that was just created, in the order they came.
    std::vector<std::size_t> release(const Identifier& created);
    // Every slot still waiting, in merged order.
    std::vector<std::size_t> remaining() const;

private:
    struct Slot {
        DocumentDiff diff;
        std::uint64_t sequence;
        bool done = false;
        bool counted = false; // counted in m_blocked under its own identifier
    };
    struct Block {
        Identifier awaited;
        std::size_t count = 0;
    };

    void uncount(Slot& slot);

    std::vector<Slot> m_slots;
    std::unordered_map<Identifier, std::vector<std::size_t>, IdentifierHash> m_waiting;
    std::unordered_map<Identifier, Block, IdentifierHash> m_blocked;
};

} // namespace quillery
