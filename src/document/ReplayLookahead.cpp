#include "document/ReplayLookahead.h"

#include <algorithm>

namespace quillery {

namespace {

// How many records ahead each stage works. The ring must be longer than the first distance.
constexpr std::size_t kRecordDistance = 32;
constexpr std::size_t kSlotDistance = 16;
constexpr std::size_t kNodeDistance = 10;
constexpr std::size_t kParentSlotDistance = 6;
constexpr std::size_t kParentNodeDistance = 3;
constexpr std::size_t kChildrenDistance = 1;

constexpr std::size_t kCacheLine = 64;
constexpr std::size_t kPayloadLines = 4;

void prefetch(const void* address) {
    __builtin_prefetch(address);
}

// The start of a child list, which applying a record scans for a child; longer lists are left
// to the processor's own prefetcher once the scan runs.
void prefetchChildren(const NotebookNode* node) {
    constexpr std::size_t kMaxLines = 8;
    const auto& children = node->children();
    const auto* start = reinterpret_cast<const char*>(children.data());
    const std::size_t bytes = std::min(children.size() * sizeof(NodePtr), kMaxLines * kCacheLine);
    for (std::size_t offset = 0; offset < bytes; offset += kCacheLine)
        prefetch(start + offset);
}

// A node's fields span two cache lines wherever the allocator put it.
void prefetchNode(const NotebookNode* node) {
    prefetch(node);
    prefetch(reinterpret_cast<const char*>(node) + kCacheLine);
}

// Compared as views of known length, which compiles to a few loads instead of library calls.
bool namesNode(std::string_view key) {
    using namespace std::string_view_literals;
    return key == "parent"sv || key == "before"sv || key == "after"sv;
}

} // namespace

ReplayLookahead::ReplayLookahead(const NodeIndex& index, const std::vector<DocumentDiff>& diffs)
    : m_index(index)
    , m_diffs(diffs) {
}

void ReplayLookahead::advance(std::size_t at) {
    const std::size_t count = m_diffs.size();
    // The list itself is read in order, but too far from where it was written to be cached.
    if (at + kRecordDistance < count)
        prefetch(&m_diffs[at + kRecordDistance]);
    if (at + kSlotDistance < count)
        prefetchSlots(at + kSlotDistance);
    if (at + kNodeDistance < count)
        findNodes(at + kNodeDistance);
    if (at + kParentSlotDistance < count)
        prefetchParentSlots(at + kParentSlotDistance);
    if (at + kParentNodeDistance < count)
        findParents(at + kParentNodeDistance);
    if (at + kChildrenDistance < count)
        prefetchChildLists(at + kChildrenDistance);
}

void ReplayLookahead::forgetFoundNodes() {
    for (Entry& pending : m_ring) {
        pending.node = nullptr;
        pending.parent = nullptr;
        pending.namedNodes.fill(nullptr);
    }
}

// The record's node, looked up again when it was not there yet (a record in between may have
// created it) or was forgotten.
NotebookNode* ReplayLookahead::target(std::size_t record) {
    Entry& pending = entry(record);
    if (!pending.node)
        pending.node = m_index.find(m_diffs[record].identifier);
    return pending.node;
}

void ReplayLookahead::prefetchSlots(std::size_t record) {
    const DocumentDiff& diff = m_diffs[record];
    m_index.prefetch(diff.identifier);
    // A payload's entries follow its header in one block of about four cache lines; fetching a
    // line past a smaller block costs nothing.
    const auto* payload = static_cast<const char*>(diff.payload.storageAddress());
    if (payload)
        for (std::size_t line = 0; line < kPayloadLines; ++line)
            prefetch(payload + line * kCacheLine);
}

void ReplayLookahead::findNodes(std::size_t record) {
    const DocumentDiff& diff = m_diffs[record];
    Entry& pending = entry(record);
    pending = Entry{};
    pending.node = m_index.find(diff.identifier);
    if (pending.node)
        prefetchNode(pending.node);
    for (const auto& [key, value] : diff.payload) {
        const Identifier* text = value.textIdentifier();
        if (!text)
            continue;
        if (namesNode(key) && pending.namedCount < kMaxNamed) {
            pending.namedIdentifiers[pending.namedCount++] = text;
            m_index.prefetch(*text);
        } else {
            // A note's text: copied into the node when the record is applied.
            prefetch(text->storageAddress());
        }
    }
}

void ReplayLookahead::prefetchParentSlots(std::size_t record) {
    Entry& pending = entry(record);
    if (NotebookNode* node = target(record)) {
        if (!node->parentNode())
            m_index.prefetch(node->parentIdentifier());
        prefetch(node->text().data());
    }
    for (std::size_t i = 0; i < pending.namedCount; ++i) {
        pending.namedNodes[i] = m_index.find(*pending.namedIdentifiers[i]);
        if (pending.namedNodes[i])
            prefetchNode(pending.namedNodes[i]);
    }
}

void ReplayLookahead::findParents(std::size_t record) {
    Entry& pending = entry(record);
    if (NotebookNode* node = target(record)) {
        pending.parent = node->parentNode();
        if (!pending.parent)
            pending.parent = m_index.find(node->parentIdentifier());
        if (pending.parent)
            prefetchNode(pending.parent);
    }
    // A new parent is walked up to see that the node does not move into itself.
    for (std::size_t i = 0; i < pending.namedCount; ++i) {
        if (const NotebookNode* named = pending.namedNodes[i]) {
            prefetchChildren(named);
            if (const NotebookNode* parent = named->parentNode())
                prefetchNode(parent);
        }
    }
}

void ReplayLookahead::prefetchChildLists(std::size_t record) {
    Entry& pending = entry(record);
    if (const NotebookNode* parent = pending.parent)
        prefetchChildren(parent);
    for (std::size_t i = 0; i < pending.namedCount; ++i)
        if (const NotebookNode* named = pending.namedNodes[i])
            if (const NotebookNode* parent = named->parentNode())
                if (const NotebookNode* grandparent = parent->parentNode())
                    prefetchNode(grandparent);
}

} // namespace quillery
