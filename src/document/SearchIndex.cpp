#include "document/SearchIndex.h"

#include "document/TextFolding.h"

#include <algorithm>
#include <unordered_set>

namespace quillery {

namespace {

// A rebuild pays off once this many slots were made or emptied since the last one.
std::size_t rebuildThreshold(const FoldedNoteTable& table) {
    return 4096 + table.builtSlots() / 8;
}

constexpr std::size_t kCachedWords = 8;
// Notes built into the table are 2^32 keys apart; added ones take this much of such a gap.
constexpr FoldedNoteTable::Key kAddedKeyStep = FoldedNoteTable::Key{1} << 16;
constexpr std::size_t kRebuildAtOnceBelow = 100'000;
// Below this share of all notes, candidates are checked one by one instead of scanning the buffer.
constexpr std::size_t kCheckEachShare = 128;

// The notes under `top`, itself first, in tree order; an explicit stack, since trees may be a
// million deep.
template <typename Visit>
void forEachInTreeOrder(NotebookNode& top, Visit visit) {
    std::vector<NotebookNode*> stack{&top};
    while (!stack.empty()) {
        NotebookNode* node = stack.back();
        stack.pop_back();
        visit(*node);
        for (auto child = node->children().rbegin(); child != node->children().rend(); ++child)
            stack.push_back(child->get());
    }
}

void appendSnapshot(NotebookNode& top, TreeSnapshot& snapshot) {
    forEachInTreeOrder(top, [&](NotebookNode& node) {
        snapshot.nodes.push_back(&node);
        snapshot.texts += node.text();
        if (node.url()) {
            snapshot.texts += '\n';
            snapshot.texts += *node.url();
        }
        snapshot.ends.push_back(snapshot.texts.size());
    });
}

} // namespace

SearchIndex::SearchIndex(Document& document, std::function<void()> onBuilt)
    : m_document(document)
    , m_onBuilt(std::move(onBuilt)) {
    m_observer =
        m_document.addObserver([this](const DocumentUpdate& update) { noteChanged(update); });
    startBuild();
}

SearchIndex::~SearchIndex() {
    m_document.removeObserver(m_observer);
    if (m_worker.joinable())
        m_worker.join();
}

void SearchIndex::startBuild() {
    if (m_building)
        return;
    auto snapshot = std::make_shared<TreeSnapshot>();
    snapshot->nodes.reserve(m_document.nodeCount());
    snapshot->ends.reserve(m_document.nodeCount());
    appendSnapshot(*m_document.rootNode(), *snapshot);
    snapshot->deletedRootSlot = snapshot->nodes.size();
    appendSnapshot(*m_document.deletedRootNode(), *snapshot);

    if (m_worker.joinable())
        m_worker.join();
    m_building = true;
    m_changesDuringBuild.clear();
    m_replacedDuringBuild = false;
    m_worker = std::thread([this, snapshot] {
        auto table = std::make_unique<FoldedNoteTable>(*snapshot);
        {
            std::lock_guard lock(m_mutex);
            m_finished = std::move(table);
        }
        m_builtCondition.notify_all();
        if (m_onBuilt)
            m_onBuilt();
    });
}

void SearchIndex::takeFinishedBuild() {
    if (!m_building)
        return;
    std::unique_ptr<FoldedNoteTable> finished;
    {
        std::lock_guard lock(m_mutex);
        finished = std::move(m_finished);
    }
    if (!finished)
        return;
    m_worker.join();
    m_building = false;
    if (m_replacedDuringBuild) {
        startBuild();
        return;
    }
    // The table was built from the tree as it stood when the build began; the changes since
    // bring it up to date, as they did the table in use.
    m_table = std::move(finished);
    m_wordCache.clear();
    std::vector<DocumentUpdate> changes = std::move(m_changesDuringBuild);
    m_changesDuringBuild.clear();
    for (const DocumentUpdate& change : changes)
        applyToTable(change);
}

bool SearchIndex::isReady() {
    takeFinishedBuild();
    return m_table != nullptr;
}

void SearchIndex::waitUntilReady() {
    while (m_building) {
        {
            std::unique_lock lock(m_mutex);
            m_builtCondition.wait(lock, [this] { return m_finished != nullptr; });
        }
        takeFinishedBuild();
    }
}

void SearchIndex::noteChanged(const DocumentUpdate& update) {
    takeFinishedBuild();
    if (update.type == NodeUpdateType::reloadedTree) {
        // The table's notes may be gone with the old tree.
        m_table.reset();
        m_replacedDuringBuild = true;
        startBuild();
        return;
    }
    if (m_building)
        m_changesDuringBuild.push_back(update);
    if (!m_table)
        return;
    m_wordCache.clear();
    applyToTable(update);
    if (m_table && m_table->churn() > rebuildThreshold(*m_table))
        startBuild();
}

void SearchIndex::applyToTable(const DocumentUpdate& update) {
    switch (update.type) {
    case NodeUpdateType::changedText:
        reindexText(*update.node);
        break;
    case NodeUpdateType::insertedNode:
    case NodeUpdateType::movedWithinParent:
    case NodeUpdateType::changedParent:
        reindexSubtree(*update.node, update.newChildIndex);
        break;
    case NodeUpdateType::destroyedNode:
        removeSubtree(*update.node);
        break;
    case NodeUpdateType::reloadedTree:
        break;
    }
}

void SearchIndex::reindexText(NotebookNode& node) {
    const std::size_t slot = m_table->slotOf(&node);
    if (slot == FoldedNoteTable::npos || slot == 0 || !m_table->node(slot) ||
        &node == m_document.deletedRootNode().get())
        return;
    const FoldedNoteTable::Key key = m_table->key(slot);
    const bool deleted = m_table->isDeleted(slot);
    m_table->remove(slot);
    m_table->append(&node, node.text(), node.url() ? &*node.url() : nullptr, key, deleted);
}

void SearchIndex::removeSubtree(NotebookNode& top) {
    std::unordered_set<const NotebookNode*> nodes;
    forEachInTreeOrder(top, [&](NotebookNode& node) { nodes.insert(&node); });
    m_table->removeAll(nodes);
}

void SearchIndex::reindexSubtree(NotebookNode& top, std::optional<std::size_t> index) {
    if (&top == m_document.rootNode().get() || &top == m_document.deletedRootNode().get())
        return;
    std::vector<NotebookNode*> subtree;
    forEachInTreeOrder(top, [&](NotebookNode& node) { subtree.push_back(&node); });
    m_table->removeAll(std::unordered_set<const NotebookNode*>(subtree.begin(), subtree.end()));
    const NotebookNode* root = rootOf(top);
    if (!root)
        return; // the note stands under a note that is no longer in the tree
    const std::size_t before = m_table->slotOf(precedingNode(top, index));
    if (before == FoldedNoteTable::npos) {
        startBuild();
        return;
    }
    // The moved notes take keys between their new neighbours', a small step apart, so that notes
    // added one after another (a merge brings thousands) leave room for the next instead of
    // halving it each time. When the gap is used up they share a key, slightly out of order
    // until the next rebuild: at once for a small table, at the churn threshold for a large one,
    // whose rebuild walks the whole tree on this thread.
    const FoldedNoteTable::Key low = m_table->key(before);
    const FoldedNoteTable::Key gap = m_table->nextKeyAfter(low) - low;
    const FoldedNoteTable::Key step = std::min(gap / (subtree.size() + 1), kAddedKeyStep);
    if (step == 0 && m_table->builtSlots() < kRebuildAtOnceBelow)
        startBuild();
    const bool deleted = root == m_document.deletedRootNode().get();
    FoldedNoteTable::Key key = low;
    for (NotebookNode* node : subtree) {
        key += step;
        m_table->append(node, node->text(), node->url() ? &*node->url() : nullptr, key, deleted);
    }
}

const NotebookNode* SearchIndex::rootOf(const NotebookNode& node) const {
    // A cycle in a foreign journal must not hang the walk.
    const NotebookNode* current = &node;
    for (std::size_t steps = 0; current->parentNode() && steps <= m_document.nodeCount(); ++steps)
        current = current->parentNode();
    if (current == m_document.rootNode().get() || current == m_document.deletedRootNode().get())
        return current;
    return nullptr;
}

NotebookNode* SearchIndex::precedingNode(const NotebookNode& node,
                                         std::optional<std::size_t> index) const {
    NotebookNode* parent = node.parentNode();
    const auto& siblings = parent->children();
    // The change names the note's place; a parent may have a hundred thousand children.
    auto at = index && *index < siblings.size() && siblings[*index].get() == &node
                  ? siblings.begin() + static_cast<std::ptrdiff_t>(*index)
                  : std::find_if(siblings.begin(), siblings.end(),
                                 [&](const NodePtr& sibling) { return sibling.get() == &node; });
    if (at == siblings.begin() || at == siblings.end())
        return parent;
    NotebookNode* last = std::prev(at)->get();
    while (!last->children().empty())
        last = last->children().back().get();
    return last;
}

const SlotSet* SearchIndex::cachedSlots(const std::string& word) const {
    for (const auto& [cachedWord, slots] : m_wordCache)
        if (cachedWord == word)
            return &slots;
    return nullptr;
}

const SlotSet& SearchIndex::slotsMatching(const std::string& word) {
    if (const SlotSet* known = cachedSlots(word))
        return *known;
    if (m_wordCache.size() >= kCachedWords)
        m_wordCache.erase(m_wordCache.begin());
    return m_wordCache.emplace_back(word, m_table->matching(word)).second;
}

SearchResults SearchIndex::find(std::string_view query, bool includeDeleted, std::size_t limit) {
    SearchResults results;
    if (!isReady())
        return results;
    results.ready = true;
    const std::vector<std::string> words = folding::queryWords(query);
    if (words.empty())
        return results;
    // The words whose notes are known narrow the search for the others: those notes hold every
    // word of the query, and a word found within a new one (the same word one letter shorter,
    // while typing) holds all the notes the new one can be in.
    SlotSet slots = m_table->candidates(includeDeleted);
    std::vector<const std::string*> unknown;
    for (const std::string& word : words) {
        if (const SlotSet* known = cachedSlots(word))
            slots &= *known;
        else
            unknown.push_back(&word);
    }
    for (const std::string* word : unknown) {
        for (const auto& [cachedWord, cached] : m_wordCache)
            if (word->find(cachedWord) != std::string::npos)
                slots &= cached;
        if (slots.count() <= m_table->slotCount() / kCheckEachShare)
            m_table->keepMatching(*word, slots);
        else
            slots &= slotsMatching(*word);
    }
    results.total = slots.count();
    for (std::size_t slot : m_table->firstInOrder(slots, limit))
        results.hits.push_back({m_table->node(slot), m_table->isDeleted(slot)});
    return results;
}

std::size_t SearchIndex::memoryBytes() const {
    return m_table ? m_table->memoryBytes() : 0;
}

std::string_view firstLine(std::string_view text) {
    return text.substr(0, text.find('\n'));
}

std::vector<std::string_view> ancestorFirstLines(const NotebookNode& node) {
    std::vector<std::string_view> lines;
    for (const NotebookNode* parent = node.parentNode(); parent && parent->parentNode();
         parent = parent->parentNode())
        lines.push_back(firstLine(parent->text()));
    std::reverse(lines.begin(), lines.end());
    return lines;
}

} // namespace quillery
