// Document::loadData(): the replay of a package's merged records.
#include "document/Document.h"

namespace quillery {

namespace {

// How many records ahead each kind of memory is asked for. Every stage needs what the stage
// before it brought in (the slot names the node, the node names its parent), so the stages are
// spaced by a few records: long enough for the memory to arrive, short enough to stay cached.
constexpr std::size_t kSlotDistance = 16;
constexpr std::size_t kNodeDistance = 10;
constexpr std::size_t kParentSlotDistance = 6;
constexpr std::size_t kParentNodeDistance = 3;
constexpr std::size_t kChildrenDistance = 1;

void prefetch(const void* address) {
    __builtin_prefetch(address);
}

// The identifiers of other nodes that a record names: its new parent and its neighbours.
template <typename Visit>
void forEachNamedNode(const PlainDictionary& payload, Visit visit) {
    for (const auto& [key, value] : payload)
        if (key == "parent" || key == "before" || key == "after")
            if (const Identifier* identifier = value.textIdentifier())
                visit(*identifier);
}

} // namespace

void Document::loadData(std::vector<DocumentDiff> mergedDiffs,
                        std::vector<DocumentDiff> clientDiffs) {
    m_journalingEnabled = false;
    for (std::size_t i = 0; i < mergedDiffs.size(); ++i) {
        prefetchForReplay(mergedDiffs, i);
        applyDiff(mergedDiffs[i], false);
        // The list is the replay's own, so each payload can go once applied: the memory of an
        // open then peaks near the larger of the records and the tree, not near their sum.
        mergedDiffs[i].payload = PlainDictionary();
    }
    m_journalingEnabled = true;
    m_diffs = std::move(clientDiffs);
}

void Document::prefetchForReplay(const std::vector<DocumentDiff>& diffs, std::size_t at) const {
    const std::size_t count = diffs.size();
    if (at + kSlotDistance < count) {
        const DocumentDiff& diff = diffs[at + kSlotDistance];
        m_nodeLookup.prefetch(diff.identifier);
        prefetch(diff.payload.storageAddress());
    }
    if (at + kNodeDistance < count) {
        const DocumentDiff& diff = diffs[at + kNodeDistance];
        if (const NotebookNode* node = m_nodeLookup.find(diff.identifier))
            prefetch(node);
        forEachNamedNode(diff.payload,
                         [this](const Identifier& named) { m_nodeLookup.prefetch(named); });
    }
    if (at + kParentSlotDistance < count) {
        const DocumentDiff& diff = diffs[at + kParentSlotDistance];
        if (const NotebookNode* node = m_nodeLookup.find(diff.identifier)) {
            m_nodeLookup.prefetch(node->parentIdentifier());
            prefetch(node->text().data());
        }
        forEachNamedNode(diff.payload, [this](const Identifier& named) {
            if (const NotebookNode* node = m_nodeLookup.find(named))
                prefetch(node);
        });
    }
    if (at + kParentNodeDistance < count) {
        const DocumentDiff& diff = diffs[at + kParentNodeDistance];
        if (const NotebookNode* node = m_nodeLookup.find(diff.identifier))
            if (const NotebookNode* parent = m_nodeLookup.find(node->parentIdentifier()))
                prefetch(parent);
        forEachNamedNode(diff.payload, [this](const Identifier& named) {
            if (const NotebookNode* node = m_nodeLookup.find(named)) {
                prefetch(node->children().data());
                m_nodeLookup.prefetch(node->parentIdentifier());
            }
        });
    }
    if (at + kChildrenDistance < count) {
        const DocumentDiff& diff = diffs[at + kChildrenDistance];
        if (const NotebookNode* node = m_nodeLookup.find(diff.identifier))
            if (const NotebookNode* parent = m_nodeLookup.find(node->parentIdentifier()))
                prefetch(parent->children().data());
    }
}

} // namespace quillery
