#include "document/FoldedNoteTable.h"

#include "document/TextFolding.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace quillery {

namespace {

// Slots whose start in the buffer is kept: one in this many, so finding any note's text costs a
// short walk and the table stays small.
constexpr std::size_t kBlockSlots = 32;

// Marks the slots whose text holds the needle, in one pass over the buffer. Slots are counted by
// their separators as the pass goes, so a hit needs no lookup. The SSE2 path compares the
// needle's first and last bytes at 64 places a step and checks the rest only where both agree.
void markMatches(std::string_view buffer, std::string_view needle, SlotSet& found) {
    const char* data = buffer.data();
    const std::size_t size = buffer.size();
    const std::size_t n = needle.size();
    std::size_t slot = 0;
    std::size_t lastMarked = FoldedNoteTable::npos;
    std::size_t at = 0;
    // Whether the needle occurs at the position, in a note not marked yet.
    auto check = [&](std::size_t position, std::size_t slotThere) {
        return slotThere != lastMarked &&
               std::memcmp(data + position + 1, needle.data() + 1, n - 1) == 0;
    };
#ifdef __SSE2__
    const __m128i zero = _mm_setzero_si128();
    const __m128i first = _mm_set1_epi8(needle.front());
    const __m128i last = _mm_set1_epi8(needle.back());
    auto mask16 = [](__m128i bytes, __m128i value) {
        return static_cast<std::uint64_t>(
            static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, value))));
    };
    for (; at + 64 + n - 1 <= size; at += 64) {
        std::uint64_t separators = 0;
        std::uint64_t candidates = 0;
        for (int part = 0; part < 4; ++part) {
            const char* chunk = data + at + 16 * part;
            const __m128i head = _mm_loadu_si128(reinterpret_cast<const __m128i*>(chunk));
            const __m128i tail = _mm_loadu_si128(reinterpret_cast<const __m128i*>(chunk + n - 1));
            separators |= mask16(head, zero) << (16 * part);
            candidates |= (mask16(head, first) & mask16(tail, last)) << (16 * part);
        }
        while (candidates) {
            const int bit = std::countr_zero(candidates);
            const std::uint64_t below = (std::uint64_t{1} << bit) - 1;
            const std::size_t slotThere =
                slot + static_cast<std::size_t>(std::popcount(separators & below));
            // Words of one or two bytes matched whole in the comparisons above.
            if (n <= 2 ? slotThere != lastMarked
                       : check(at + static_cast<std::size_t>(bit), slotThere)) {
                found.insert(slotThere);
                lastMarked = slotThere;
                // The rest of this note need not be looked at.
                const std::uint64_t later = separators & ~below;
                candidates = later ? candidates & ~((later & -later) - 1) : 0;
            } else {
                candidates &= candidates - 1;
            }
        }
        slot += static_cast<std::size_t>(std::popcount(separators));
    }
#endif
    for (; at + n <= size; ++at) {
        if (data[at] == '\0')
            ++slot;
        else if (data[at] == needle.front() && check(at, slot)) {
            found.insert(slot);
            lastMarked = slot;
        }
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

std::string_view FoldedNoteTable::foldedText(std::size_t slot) const {
    const char* buffer = m_buffer.data();
    const std::size_t size = m_buffer.size();
    std::size_t start = m_blockStarts[slot / kBlockSlots];
    for (std::size_t skip = slot % kBlockSlots; skip > 0; --skip)
        start = static_cast<std::size_t>(
                    static_cast<const char*>(std::memchr(buffer + start, '\0', size - start)) -
                    buffer) +
                1;
    const auto* end = static_cast<const char*>(std::memchr(buffer + start, '\0', size - start));
    return {buffer + start, static_cast<std::size_t>(end - (buffer + start))};
}

void FoldedNoteTable::keepMatching(std::string_view word, SlotSet& slots) const {
    slots.forEach(0, slots.size(), [&](std::size_t slot) {
        if (foldedText(slot).find(word) == std::string_view::npos)
            slots.erase(slot);
        return true;
    });
}

std::size_t FoldedNoteTable::slotOf(const NotebookNode* node) const {
    if (m_builtByAddress.empty() && m_builtSlots > 0) {
        m_builtByAddress.reserve(m_builtSlots);
        for (std::size_t slot = 0; slot < m_builtSlots; ++slot)
            m_builtByAddress.emplace_back(m_nodes[slot], slot);
        std::sort(m_builtByAddress.begin(), m_builtByAddress.end(),
                  [](const auto& a, const auto& b) { return std::less<>()(a.first, b.first); });
    }
    const auto built = std::lower_bound(m_builtByAddress.begin(), m_builtByAddress.end(), node,
                                        [](const auto& entry, const NotebookNode* wanted) {
                                            return std::less<>()(entry.first, wanted);
                                        });
    // A built slot emptied since keeps its entry; its note may stand in an added slot now.
    if (built != m_builtByAddress.end() && built->first == node && m_nodes[built->second] == node)
        return built->second;
    for (std::size_t slot = m_nodes.size(); slot-- > m_builtSlots;)
        if (m_nodes[slot] == node)
            return slot;
    return npos;
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
    const std::size_t slot = m_nodes.size();
    startSlot();
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
    if (!word.empty())
        markMatches(m_buffer, word, found);
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
           m_live.memoryBytes() + m_deleted.memoryBytes() +
           m_builtByAddress.capacity() * sizeof(m_builtByAddress.front());
}

} // namespace quillery
