#include "document/NodeIndex.h"

#include <bit>

namespace quillery {

namespace {

constexpr std::size_t kInitialSlots = 16;
// Linear probing stays short up to about this load; a new key probes about 1 / (1 - load)^2 slots.
constexpr std::size_t kLoadNumerator = 7;
constexpr std::size_t kLoadDenominator = 10;

} // namespace

NodeIndex::NodeIndex()
    : m_slots(kInitialSlots)
    , m_shift(static_cast<unsigned>(64 - std::countr_zero(kInitialSlots))) {
}

const NodePtr* NodeIndex::findShared(const Identifier& identifier) const {
    const Slot& slot = m_slots[position(identifier)];
    return slot.node ? &slot.node : nullptr;
}

void NodeIndex::insertOrAssign(NodePtr node) {
    if ((m_size + 1) * kLoadDenominator > m_slots.size() * kLoadNumerator)
        grow();
    Slot& slot = m_slots[position(node->identifier())];
    if (!slot.node) {
        slot.key = node->identifier();
        ++m_size;
    }
    slot.node = std::move(node);
}

bool NodeIndex::erase(const Identifier& identifier) {
    std::size_t hole = position(identifier);
    if (!m_slots[hole].node)
        return false;
    // Backward-shift deletion: pull later entries of the probe run into the hole, so lookups
    // never need tombstones.
    for (std::size_t slot = next(hole); m_slots[slot].node; slot = next(slot)) {
        const std::size_t wanted = home(m_slots[slot].key);
        const bool reachable =
            hole <= slot ? (wanted <= hole || wanted > slot) : (wanted <= hole && wanted > slot);
        if (reachable) {
            m_slots[hole] = std::move(m_slots[slot]);
            hole = slot;
        }
    }
    m_slots[hole] = Slot{};
    --m_size;
    return true;
}

void NodeIndex::reserve(std::size_t count) {
    std::size_t slots = m_slots.size();
    while (count * kLoadDenominator > slots * kLoadNumerator)
        slots *= 2;
    if (slots > m_slots.size())
        rehash(slots);
}

void NodeIndex::grow() {
    rehash(m_slots.size() * 2);
}

void NodeIndex::rehash(std::size_t slotCount) {
    std::vector<Slot, HugePageAllocator<Slot>> old(slotCount);
    old.swap(m_slots);
    m_shift = static_cast<unsigned>(64 - std::countr_zero(slotCount));
    for (Slot& slot : old) {
        if (!slot.node)
            continue;
        Slot& target = m_slots[position(slot.key)];
        target = std::move(slot);
    }
}

} // namespace quillery
