// Document::loadData(): the replay of a package's merged records.
#include "document/Document.h"
#include "document/ReplayLookahead.h"

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

} // namespace

void Document::loadData(std::vector<DocumentDiff> mergedDiffs,
                        std::vector<DocumentDiff> clientDiffs) {
    m_journalingEnabled = false;
    m_nodeLookup.reserve(m_nodeLookup.size() + estimatedCreations(mergedDiffs));
    ReplayLookahead lookahead(m_nodeLookup, mergedDiffs);
    for (std::size_t i = 0; i < mergedDiffs.size(); ++i) {
        lookahead.advance(i);
        const std::uint64_t removals = m_removals;
        applyDiff(mergedDiffs[i], false);
        if (m_removals != removals)
            lookahead.forgetFoundNodes();
        // The list is the replay's own, so each payload can go once applied: the memory of an
        // open then peaks near the larger of the records and the tree, not near their sum.
        mergedDiffs[i].payload = PlainDictionary();
    }
    m_journalingEnabled = true;
    m_diffs = std::move(clientDiffs);
}

} // namespace quillery
