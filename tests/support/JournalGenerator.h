#pragma once

#include "model/DocumentDiff.h"

#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace quillery::testing_support {

// The share of records, in percent, that makes each kind of change; the rest edit a note's text.
struct RecordMix {
    unsigned creations = 0;
    unsigned moves = 0;     // to another parent, never into the note's own subtree
    unsigned reorders = 0;  // among the note's siblings
    unsigned deletions = 0; // moves to the deleted notes
};

// A long-used notebook: mostly new notes, then text edits and a few reorders.
inline constexpr RecordMix kMostlyNewNotes{80, 0, 5, 0};
// A notebook worked on for a long time: every kind of change.
inline constexpr RecordMix kEveryChange{40, 10, 10, 5};

// Journals of clients working on one notebook. The generator keeps its own light copy of the
// tree, so every record makes sense where it was made: notes are created under notes that exist
// (recent ones more often, at most `maxChildren` a parent), moved only out of their own subtree,
// placed before siblings they have. Creations read "Note N of the day" and edits "Edited at N",
// N counting the records made. The same seed makes the same journals.
class JournalGenerator {
public:
    JournalGenerator(std::uint64_t seed, RecordMix mix, std::size_t maxChildren = 24);

    // `count` more records, stamped `perSecond` to a second from `start`, handed to `journals`
    // journals in turns of `turn` records. Each journal is in time order.
    std::vector<std::vector<DocumentDiff>> generate(std::size_t count, std::size_t journals,
                                                    TimePoint start, std::size_t perSecond = 4,
                                                    std::size_t turn = 64);

    // The deepest level of the tree made so far and the mean level of its notes.
    std::pair<std::size_t, double> depth() const;

private:
    struct Node {
        Identifier identifier;
        std::uint32_t parent;
        std::vector<std::uint32_t> children;
    };

    DocumentDiff makeRecord(TimePoint stamp);
    DocumentDiff create(TimePoint stamp);
    DocumentDiff editText(TimePoint stamp);
    std::optional<DocumentDiff> reorder(TimePoint stamp);
    std::optional<DocumentDiff> reparent(TimePoint stamp, std::uint32_t destination);
    void insertChild(std::uint32_t parent, std::uint32_t child, PlainDictionary& payload);
    bool liesWithin(std::uint32_t candidate, std::uint32_t ancestor) const;
    std::uint32_t pickParent();
    std::uint32_t pickNote();
    Identifier randomIdentifier();

    std::mt19937_64 m_random;
    RecordMix m_mix;
    std::size_t m_maxChildren;
    std::vector<Node> m_nodes;
    std::size_t m_made = 0;
};

} // namespace quillery::testing_support
