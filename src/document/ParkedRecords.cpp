#include "document/ParkedRecords.h"

#include <algorithm>

namespace quillery {

std::size_t ParkedRecords::keep(DocumentDiff diff, std::uint64_t sequence) {
    m_slots.push_back(Slot{std::move(diff), sequence});
    return m_slots.size() - 1;
}

void ParkedRecords::markDone(std::size_t slot) {
    uncount(m_slots[slot]);
    m_slots[slot].done = true;
}

void ParkedRecords::wait(std::size_t slot, const Identifier& awaited) {
    m_waiting[awaited].push_back(slot);
    Slot& parked = m_slots[slot];
    // A record waiting for its own note does not hold back that note's creation.
    if (parked.diff.identifier == awaited)
        return;
    Block& block = m_blocked[parked.diff.identifier];
    block.awaited = awaited;
    ++block.count;
    parked.counted = true;
}

const Identifier* ParkedRecords::blockedBehind(const Identifier& node) const {
    auto found = m_blocked.find(node);
    return found == m_blocked.end() ? nullptr : &found->second.awaited;
}

std::vector<std::size_t> ParkedRecords::release(const Identifier& created) {
    auto found = m_waiting.find(created);
    if (found == m_waiting.end())
        return {};
    std::vector<std::size_t> released = std::move(found->second);
    m_waiting.erase(found);
    std::erase_if(released, [this](std::size_t slot) { return m_slots[slot].done; });
    for (std::size_t slot : released)
        uncount(m_slots[slot]);
    return released;
}

std::vector<std::size_t> ParkedRecords::remaining() const {
    std::vector<std::size_t> slots;
    for (const auto& [awaited, waiting] : m_waiting)
        for (std::size_t slot : waiting)
            if (!m_slots[slot].done)
                slots.push_back(slot);
    std::sort(slots.begin(), slots.end(), [this](std::size_t a, std::size_t b) {
        return m_slots[a].sequence < m_slots[b].sequence;
    });
    slots.erase(std::unique(slots.begin(), slots.end()), slots.end());
    return slots;
}

void ParkedRecords::uncount(Slot& slot) {
    if (!slot.counted)
        return;
    slot.counted = false;
    auto found = m_blocked.find(slot.diff.identifier);
    if (found != m_blocked.end() && --found->second.count == 0)
        m_blocked.erase(found);
}

} // namespace quillery
