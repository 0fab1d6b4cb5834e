#pragma once

#include "document/SlotSet.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace quillery {

class NotebookNode;

// The notes of a notebook as search sees them, in tree order, taken on the thread that owns the
// tree so that folding can happen elsewhere: each note's text, then a line feed and its web
// address when it has one.
// The two roots come first in their parts (slot 0 and deletedRootSlot) and are never results.
struct TreeSnapshot {
    std::vector<NotebookNode*> nodes;
    std::size_t deletedRootSlot = 0;
    std::string texts;
    std::vector<std::size_t> ends; // where each note's texts end in `texts`
};

// The folded text of every note in one contiguous buffer, each note's text followed by a NUL,
// scanned whole for each query word. Slots are only appended, never moved: a removed note leaves
// its slot empty until the table is rebuilt. Slots made by the build hold the notes in tree
// order; a note added later gets an order key between those of its neighbours in the tree, so
// results come in tree order without a walk of the tree. The table holds no ownership of the
// notes: whoever changes the tree keeps it current (see SearchIndex).
class FoldedNoteTable {
public:
    using Key = std::uint64_t;
    static constexpr std::size_t npos = std::numeric_limits<std::size_t>::max();
    static constexpr Key kLastKey = std::numeric_limits<Key>::max();

    FoldedNoteTable() = default;
    // Folds the snapshot's texts; callable on any thread.
    explicit FoldedNoteTable(const TreeSnapshot& snapshot);

    std::size_t slotCount() const { return m_nodes.size(); }
    NotebookNode* node(std::size_t slot) const { return m_nodes[slot]; }
    bool isDeleted(std::size_t slot) const { return m_deleted.contains(slot); }
    Key key(std::size_t slot) const {
        return slot < m_builtSlots ? Key{slot} << 32 : m_addedKeys[slot - m_builtSlots];
    }
    // The slot that holds the note, or npos: a search of the built slots (sorted by address on
    // the first call) and a pass over the slots added since.
    std::size_t slotOf(const NotebookNode* node) const;
    // Empties the slots of every note in the set; a pass over all slots.
    void removeAll(const std::unordered_set<const NotebookNode*>& nodes);
    void remove(std::size_t slot);
    // The smallest key above `key` that a note holds, or kLastKey.
    Key nextKeyAfter(Key key) const;
    void append(NotebookNode* node, std::string_view text, const std::string* url, Key key,
                bool deleted);

    // Slots made or emptied since the build: past a share of the table a rebuild pays off.
    std::size_t churn() const { return m_nodes.size() - m_builtSlots + m_removedBuiltSlots; }
    std::size_t builtSlots() const { return m_builtSlots; }

    // The slots whose folded text holds the folded word: a pass over the whole buffer.
    SlotSet matching(std::string_view word) const;
    // Takes out of the set the slots whose text does not hold the word, looking at each member's
    // text alone: cheaper than matching() while the set is below about a 128th of the slots.
    void keepMatching(std::string_view word, SlotSet& slots) const;
    // The slots that hold a note, without deleted notes unless asked.
    SlotSet candidates(bool includeDeleted) const;
    // The first `limit` members in tree order.
    std::vector<std::size_t> firstInOrder(const SlotSet& slots, std::size_t limit) const;

    std::size_t memoryBytes() const;

private:
    void startSlot();
    std::string_view foldedText(std::size_t slot) const;

    std::string m_buffer;
    std::vector<NotebookNode*> m_nodes;
    std::vector<std::size_t> m_blockStarts; // where slot 32·i starts in the buffer
    std::vector<Key> m_addedKeys;           // keys of the slots made after the build
    SlotSet m_live;
    SlotSet m_deleted;
    std::size_t m_builtSlots = 0;
    std::size_t m_removedBuiltSlots = 0;
    // The built slots by the address of their note, made when first needed: a live merge adds
    // thousands of notes, each placed after a neighbour that must be found among a million.
    mutable std::vector<std::pair<const NotebookNode*, std::size_t>> m_builtByAddress;
};

} // namespace quillery
