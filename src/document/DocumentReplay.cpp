// Document::loadData(): the replay of a package's merged records.
#include "base/Diagnostics.h"
#include "document/Document.h"
#include "document/ParkedRecords.h"
#include "document/ReplayLookahead.h"

#include <queue>

#include <algorithm>
#include <deque>
#include <functional>
#include <unordered_map>

namespace quillery {

namespace {

// How many nodes a replay will index, guessed from every 64th record: a record that carries both
// "text" and "parent" creates one. A few thousand cold reads, against growing a large index
// several times over.
std::size_t estimatedCreations(const std::vector<DocumentDiff>& diffs) {
    constexpr std::size_t kStride = 64;
    std::size_t sampled = 0;
    std::size_t creations = 0;
    for (std::size_t i = 0; i < diffs.size(); i += kStride) {
        ++sampled;
        const PlainDictionary& payload = diffs[i].payload;
        if (payload.contains("text") && payload.contains("parent"))
            ++creations;
    }
    return sampled == 0 ? 0 : diffs.size() * creations / sampled;
}

const Identifier* parentNamed(const PlainDictionary& payload) {
    const PlainValue* parent = payload.find("parent");
    return parent ? parent->textIdentifier() : nullptr;
}

bool isCreationForm(const PlainDictionary& payload) {
    const PlainValue* text = payload.find("text");
    return text && text->isText() && parentNamed(payload);
}

} // namespace

// One replay. Clocks differ between machines and a sync tool delivers journals in any order, so a
// record may come before the record that creates the note it needs. Such a record waits until
// that note is created, then applies; what still waits at the end puts its note at the end of the
// top level. The order of everything is the merged order, so every reader builds the same tree.
class ReplayRun {
public:
    explicit ReplayRun(Document& document)
        : m_document(document) {}

    void run(std::vector<DocumentDiff>& merged) {
        ReplayLookahead lookahead(m_document.m_nodeLookup, merged);
        for (std::size_t i = 0; i < merged.size(); ++i) {
            lookahead.advance(i);
            const std::uint64_t removals = m_document.m_removals;
            DocumentDiff& diff = merged[i];
            if (const Identifier* needed = awaited(diff)) {
                const Identifier copy = *needed;
                m_parked.wait(m_parked.keep(diff, i), copy);
            } else {
                apply(diff);
            }
            if (m_document.m_removals != removals)
                lookahead.forgetFoundNodes();
            // The list is the replay's own, so each payload can go once applied: the memory of an
            // open then peaks near the larger of the records and the tree, not near their sum.
            diff.payload = PlainDictionary();
        }
        finish();
    }

private:
    // The note the record must wait for, or null when it can apply now.
    const Identifier* awaited(const DocumentDiff& diff) const {
        if (!m_parked.empty())
            if (const Identifier* behind = m_parked.blockedBehind(diff.identifier))
                return behind;
        const NodeIndex& index = m_document.m_nodeLookup;
        const Identifier* parent = parentNamed(diff.payload);
        if (index.find(diff.identifier))
            return parent && !index.find(*parent) ? parent : nullptr;
        if (isCreationForm(diff.payload))
            return index.find(*parent) ? nullptr : parent;
        return &diff.identifier; // a change of a note that is not there yet
    }

    void apply(const DocumentDiff& diff) {
        m_document.applyDiff(diff, false);
        if (m_parked.empty())
            return;
        std::vector<std::size_t> released = m_parked.release(diff.identifier);
        if (released.empty())
            return;
        // Released records apply before the next record of the merged list, in the order they
        // came; a chain of them is worked off here rather than by recursion, however deep.
        const bool draining = !m_ready.empty();
        m_ready.insert(m_ready.end(), released.begin(), released.end());
        if (!draining)
            drain();
    }

    void drain() {
        while (!m_ready.empty()) {
            const std::size_t slot = m_ready.front();
            if (!m_parked.done(slot))
                offer(slot);
            m_ready.pop_front();
        }
    }

    void offer(std::size_t slot) {
        DocumentDiff& diff = m_parked.record(slot);
        if (const Identifier* needed = awaited(diff)) {
            const Identifier copy = *needed;
            m_parked.wait(slot, copy);
            if (m_finishing)
                m_heap.push({m_parked.sequence(slot), slot});
            return;
        }
        m_parked.markDone(slot);
        apply(diff);
    }

    // What waits at the end is applied in merged order. A creation whose parent no record
    // creates lands at the end of the top level and brings the notes waiting for it; of notes
    // waiting for each other in a ring, the first lands. A move whose parent never comes leaves
    // its note where it is. A change of a note that was never created has nothing to apply to.
    void finish() {
        m_finishing = true;
        const std::vector<std::size_t> remaining = m_parked.remaining();
        for (std::size_t slot : remaining) {
            const DocumentDiff& diff = m_parked.record(slot);
            if (isCreationForm(diff.payload) && !m_document.m_nodeLookup.find(diff.identifier))
                m_pendingCreations.try_emplace(diff.identifier, slot);
            m_heap.push({m_parked.sequence(slot), slot});
        }
        const std::vector<std::size_t> ringStarts = firstOfEachRing(remaining);
        while (!m_heap.empty()) {
            const std::size_t slot = m_heap.top().second;
            m_heap.pop();
            if (m_parked.done(slot))
                continue;
            DocumentDiff& diff = m_parked.record(slot);
            const bool exists = m_document.m_nodeLookup.find(diff.identifier) != nullptr;
            if (!exists && !isCreationForm(diff.payload))
                continue;
            const Identifier* parent = parentNamed(diff.payload);
            const bool parentMissing = parent && !m_document.m_nodeLookup.find(*parent);
            if (parentMissing && willBeCreated(*parent) &&
                !std::binary_search(ringStarts.begin(), ringStarts.end(), slot))
                continue; // applies once its parent lands
            m_parked.markDone(slot);
            if (parentMissing)
                m_document.m_unresolvedParents.push_back(*parent);
            if (!exists && parentMissing) {
                diagnostics::writeLine(kCouldNotFindParentLine);
                DocumentDiff landed = diff;
                landed.payload.set("parent", PlainValue(rootIdentifier()));
                landed.payload.erase("before");
                apply(landed);
            } else {
                apply(diff);
            }
            drain();
        }
    }

    bool willBeCreated(const Identifier& note) const {
        auto found = m_pendingCreations.find(note);
        return found != m_pendingCreations.end() && !m_parked.done(found->second);
    }

    // Creations that wait for each other in a ring never see their parent; the first of each ring
    // in merged order lands. Walks each chain of waiting creations once. Sorted by slot.
    std::vector<std::size_t> firstOfEachRing(const std::vector<std::size_t>& remaining) {
        enum class Mark { none, walking, walked };
        std::unordered_map<std::size_t, Mark> marks;
        std::vector<std::size_t> starts;
        for (std::size_t start : remaining) {
            std::vector<std::size_t> path;
            std::size_t slot = start;
            for (;;) {
                const DocumentDiff& diff = m_parked.record(slot);
                auto found = m_pendingCreations.find(diff.identifier);
                if (found == m_pendingCreations.end() || found->second != slot ||
                    marks[slot] != Mark::none)
                    break;
                marks[slot] = Mark::walking;
                path.push_back(slot);
                auto next = m_pendingCreations.find(*parentNamed(diff.payload));
                if (next == m_pendingCreations.end())
                    break;
                if (marks[next->second] == Mark::walking) {
                    auto ring = std::find(path.begin(), path.end(), next->second);
                    starts.push_back(
                        *std::min_element(ring, path.end(), [this](std::size_t a, std::size_t b) {
                            return m_parked.sequence(a) < m_parked.sequence(b);
                        }));
                    break;
                }
                slot = next->second;
            }
            for (std::size_t walked : path)
                marks[walked] = Mark::walked;
        }
        std::sort(starts.begin(), starts.end());
        return starts;
    }

    using HeapEntry = std::pair<std::uint64_t, std::size_t>;

    Document& m_document;
    ParkedRecords m_parked;
    std::deque<std::size_t> m_ready;
    bool m_finishing = false;
    std::priority_queue<HeapEntry, std::vector<HeapEntry>, std::greater<>> m_heap;
    // At the end: the waiting creation of each note that does not exist yet.
    std::unordered_map<Identifier, std::size_t, IdentifierHash> m_pendingCreations;
};

void Document::loadData(std::vector<DocumentDiff> mergedDiffs,
                        std::vector<DocumentDiff> clientDiffs) {
    m_journalingEnabled = false;
    m_nodeLookup.reserve(m_nodeLookup.size() + estimatedCreations(mergedDiffs));
    ReplayRun(*this).run(mergedDiffs);
    m_journalingEnabled = true;
    m_diffs = std::move(clientDiffs);
}

} // namespace quillery
