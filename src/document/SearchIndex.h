#pragma once

#include "document/Document.h"
#include "document/FoldedNoteTable.h"

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace quillery {

struct SearchHit {
    const NotebookNode* node = nullptr;
    bool deleted = false; // the note lies under the deleted notes
};

// The notes that hold every word of a query. The nodes are the document's and stay valid until
// the document next changes.
struct SearchResults {
    std::vector<SearchHit> hits; // the first matches in tree order, the deleted notes last
    std::size_t total = 0;       // all matches
    bool ready = false;          // false while the index is still being built: no results yet
};

// Finds notes by the words of their text and web address, as fast as a user types, in notebooks
// of a million notes: every word of the query must occur, in any order, as a substring of the
// folded text (see folding::fold). The folded texts live in a FoldedNoteTable, scanned whole for
// each word; the sets of notes found for the words of the last queries are kept until the next
// change, so typing one more letter rescans only the word being typed.
//
// The index follows the document through its change notifications. Building it takes a walk of
// the tree on the document's thread and the folding on a worker thread; until the first build is
// done the document is usable and queries answer "not ready". A build starts again in the
// background when many notes were added, moved or edited since the last one, and the index goes
// on answering meanwhile. Every member runs on the document's thread.
class SearchIndex {
public:
    static constexpr std::size_t kShownResults = 500;

    // Starts the first build. `onBuilt` runs on the worker thread whenever a build is done; the
    // next call of any member on the document's thread takes it up (isReady() is the cheapest).
    explicit SearchIndex(Document& document, std::function<void()> onBuilt = {});
    ~SearchIndex();
    SearchIndex(const SearchIndex&) = delete;
    SearchIndex& operator=(const SearchIndex&) = delete;

    bool isReady();
    // Blocks until no build is in progress and the last one is taken up (tools that search once,
    // tests).
    void waitUntilReady();

    SearchResults find(std::string_view query, bool includeDeleted,
                       std::size_t limit = kShownResults);

    // What the index holds, in bytes (not counting the words' result sets of the last queries).
    std::size_t memoryBytes() const;

private:
    void startBuild();
    void takeFinishedBuild();
    void noteChanged(const DocumentUpdate& update);
    void applyToTable(const DocumentUpdate& update);
    void reindexText(NotebookNode& node);
    // `index` is where the note stands among its siblings, when the change says.
    void reindexSubtree(NotebookNode& node, std::optional<std::size_t> index = std::nullopt);
    void removeSubtree(NotebookNode& node);
    const NotebookNode* rootOf(const NotebookNode& node) const;
    NotebookNode* precedingNode(const NotebookNode& node, std::optional<std::size_t> index) const;
    const SlotSet* cachedSlots(const std::string& word) const;
    const SlotSet& slotsMatching(const std::string& word);

    Document& m_document;
    Document::ObserverId m_observer = 0;
    std::function<void()> m_onBuilt;
    std::unique_ptr<FoldedNoteTable> m_table; // null until the first build is taken up

    // The build in progress, if any.
    bool m_building = false;
    std::thread m_worker;
    std::mutex m_mutex;
    std::condition_variable m_builtCondition;
    std::unique_ptr<FoldedNoteTable> m_finished; // guarded by m_mutex
    // What changed since the build in progress began (the nodes kept alive until it is taken
    // up), or that the whole tree was replaced meanwhile.
    std::vector<DocumentUpdate> m_changesDuringBuild;
    bool m_replacedDuringBuild = false;

    std::vector<std::pair<std::string, SlotSet>> m_wordCache;
};

// The first line of a note's text.
std::string_view firstLine(std::string_view text);
// The first lines of the note's ancestors from the top down, without the roots.
std::vector<std::string_view> ancestorFirstLines(const NotebookNode& node);

} // namespace quillery
