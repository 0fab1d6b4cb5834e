#include "document/FoldedNoteTable.h"

#include "document/TextFolding.h"

#include <algorithm>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace quillery {

namespace {

constexpr std::size_t kBlockSlots = 64;

// Calls onHit(position) for occurrences of the needle in [begin, end); onHit returns where to go
// on looking (past the note that matched). The SSE2 path compares the needle's first and last
// bytes at sixteen places at once and checks the rest only where both agree.
template <typename OnHit>
void forEachOccurrence(const char* begin, const char* end, std::string_view needle, OnHit onHit) {
    const std::size_t n = needle.size();
    const char* p = begin;
#ifdef __SSE2__
    if (n >= 2) {
        const __m128i first = _mm_set1_epi8(needle.front());
        const __m128i last = _mm_set1_epi8(needle.back());
        while (end - p >= static_cast<std::ptrdiff_t>(n - 1 + 16)) {
            const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
            const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + n - 1));
            auto mask = static_cast<unsigned>(_mm_movemask_epi8(
                _mm_and_si128(_mm_cmpeq_epi8(a, first), _mm_cmpeq_epi8(b, last))));
            const char* resume = p + 16;
            while (mask) {
                const char* candidate = p + __builtin_ctz(mask);
                if (std::memcmp(candidate + 1, needle.data() + 1, n - 2) == 0) {
                    resume = onHit(candidate);
                    break;
                }
                mask &= mask - 1;
            }
            p = resume;
        }
    }
#endif
    while (p < end) {
        std::string_view rest(p, static_cast<std::size_t>(end - p));
        std::size_t at = rest.find(needle);
        if (at == std::string_view::npos)
            return;
        p = onHit(p + at);
    }
}

} // namespace

FoldedNoteTable::FoldedNoteTable(const TreeSnapshot& snapshot) {
    const std::size_t count = snapshot.nodes.size();
    m_nodes.reserve(count);
    m_blockStarts.reserve(count / kBlockSlots + 1);
    m_buffer.reserve(snapshot.texts.size() + count);
    m_live.resize(count);
    m_deleted.resize(count);
    std::size_t start = 0;
    for (std::size_t slot = 0; slot < count; ++slot) {
        startSlot();
        m_nodes.push_back(snapshot.nodes[slot]);
        folding::appendFolded(
            std::string_view(snapshot.texts).substr(start, snapshot.ends[slot] - start), m_buffer);
        m_buffer.push_back('\0');
        start = snapshot.ends[slot];
        const bool root = slot == 0 || slot == snapshot.deletedRootSlot;
        m_live.set(slot, !root);
        m_deleted.set(slot, slot >= snapshot.deletedRootSlot);
    }
    m_builtSlots = count;
    // Text that grew in folding outgrew the reservation; keep only what is used.
    m_buffer.shrink_to_fit();
}

void FoldedNoteTable::startSlot() {
    if (m_nodes.size() % kBlockSlots == 0)
        m_blockStarts.push_back(m_buffer.size());
}

std::size_t FoldedNoteTable::slotOf(const NotebookNode* node) const {
    auto found = std::find(m_nodes.begin(), m_nodes.end(), node);
    return found == m_nodes.end() ? npos : static_cast<std::size_t>(found - m_nodes.begin());
}

void FoldedNoteTable::removeAll(const std::unordered_set<const NotebookNode*>& nodes) {
    if (nodes.size() == 1) {
        if (std::size_t slot = slotOf(*nodes.begin()); slot != npos)
            remove(slot);
        return;
    }
    for (std::size_t slot = 0; slot < m_nodes.size(); ++slot)
        if (m_nodes[slot] && nodes.contains(m_nodes[slot]))
            remove(slot);
}

void FoldedNoteTable::remove(std::size_t slot) {
    if (!m_nodes[slot])
        return;
    m_nodes[slot] = nullptr;
    m_live.erase(slot);
    if (slot < m_builtSlots)
        ++m_removedBuiltSlots;
}

FoldedNoteTable::Key FoldedNoteTable::nextKeyAfter(Key key) const {
    const std::size_t builtSlot = static_cast<std::size_t>(key >> 32) + 1;
    Key next = builtSlot < m_builtSlots ? Key{builtSlot} << 32 : kLastKey;
    for (std::size_t i = 0; i < m_addedKeys.size(); ++i)
        if (m_nodes[m_builtSlots + i] && m_addedKeys[i] > key && m_addedKeys[i] < next)
            next = m_addedKeys[i];
    return next;
}

void FoldedNoteTable::append(NotebookNode* node, std::string_view text, const std::string* url,
                             Key key, bool deleted) {
    startSlot();
    const std::size_t slot = m_nodes.size();
    m_nodes.push_back(node);
    m_addedKeys.push_back(key);
    folding::appendFolded(text, m_buffer);
    if (url) {
        m_buffer.push_back('\n');
        folding::appendFolded(*url, m_buffer);
    }
    m_buffer.push_back('\0');
    m_live.resize(slot + 1);
    m_deleted.resize(slot + 1);
    m_live.insert(slot);
    m_deleted.set(slot, deleted);
}

SlotSet FoldedNoteTable::matching(std::string_view word) const {
    SlotSet found(m_nodes.size());
    if (word.empty() || m_nodes.empty())
        return found;
    const char* buffer = m_buffer.data();
    const std::size_t size = m_buffer.size();
    // The slot that starts at `slotStart`; moved forward as hits come in buffer order.
    std::size_t slot = 0;
    std::size_t slotStart = 0;
    forEachOccurrence(buffer, buffer + size, word, [&](const char* hit) {
        const auto position = static_cast<std::size_t>(hit - buffer);
        std::size_t block = slot / kBlockSlots;
        if (block + 1 < m_blockStarts.size() && position >= m_blockStarts[block + 1]) {
            auto after =
                std::upper_bound(m_blockStarts.begin() + static_cast<std::ptrdiff_t>(block) + 1,
                                 m_blockStarts.end(), position);
            block = static_cast<std::size_t>(after - m_blockStarts.begin()) - 1;
            slot = block * kBlockSlots;
            slotStart = m_blockStarts[block];
        }
        while (const void* separator =
                   std::memchr(buffer + slotStart, '\0', position - slotStart)) {
            ++slot;
            slotStart = static_cast<std::size_t>(static_cast<const char*>(separator) - buffer) + 1;
        }
        found.insert(slot);
        const auto* end = static_cast<const char*>(std::memchr(hit, '\0', size - position));
        ++slot;
        slotStart = static_cast<std::size_t>(end - buffer) + 1;
        return end + 1;
    });
    return found;
}

SlotSet FoldedNoteTable::candidates(bool includeDeleted) const {
    SlotSet slots = m_live;
    if (!includeDeleted)
        slots.subtract(m_deleted);
    return slots;
}

std::vector<std::size_t> FoldedNoteTable::firstInOrder(const SlotSet& slots,
                                                       std::size_t limit) const {
    // Slots made after the build are few; sort those that are in the set by key and merge them
    // with the built slots, which are in order already.
    std::vector<std::size_t> added;
    slots.forEach(m_builtSlots, m_nodes.size(), [&](std::size_t slot) {
        added.push_back(slot);
        return true;
    });
    std::sort(added.begin(), added.end(),
              [this](std::size_t a, std::size_t b) { return key(a) < key(b); });
    std::vector<std::size_t> result;
    auto nextAdded = added.begin();
    slots.forEach(0, m_builtSlots, [&](std::size_t slot) {
        for (; nextAdded != added.end() && key(*nextAdded) < key(slot) && result.size() < limit;
             ++nextAdded)
            result.push_back(*nextAdded);
        if (result.size() < limit)
            result.push_back(slot);
        return result.size() < limit;
    });
    for (; nextAdded != added.end() && result.size() < limit; ++nextAdded)
        result.push_back(*nextAdded);
    return result;
}

std::size_t FoldedNoteTable::memoryBytes() const {
    return m_buffer.capacity() + m_nodes.capacity() * sizeof(NotebookNode*) +
           m_blockStarts.capacity() * sizeof(std::size_t) + m_addedKeys.capacity() * sizeof(Key) +
           m_live.memoryBytes() + m_deleted.memoryBytes();
}

} // namespace quillery
