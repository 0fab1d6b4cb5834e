#pragma once

#include "base/FileIdentity.h"
#include "document/DeletionOrigins.h"
#include "document/DocumentUpdate.h"
#include "document/ImageStore.h"
#include "document/NodeIndex.h"
#include "document/UndoManager.h"
#include "model/DocumentDiff.h"
#include "model/JournalMerge.h"
#include "model/NotebookNode.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quillery {

class Preferences;
class ReplayRun;

// Written when a record names a parent that no record creates.
inline constexpr std::string_view kCouldNotFindParentLine =
    "Couldn't find parent! All nodes must have a parent.";

// The in-memory notebook: the tree under the two roots "root" and "deleted", the index from
// identifier to node, this client's log of records, the undo and redo stacks and the pictures.
// The tree changes only through applyDiff(); edits, undo, redo and replay all end there.
// Single-threaded, like the views that show it.
// Why an undo step was refused: what it would take back has changed elsewhere since (another
// machine or process merged records in between).
enum class UndoObstacle {
    noteGone,          // a note the step changed is no longer in the notebook
    notesAddedBeneath, // taking back an addition would also take notes added beneath it since
    placeGone,         // the parent a note would go back to is no longer in the notebook
};

class Document {
public:
    using Clock = std::function<TimePoint()>;
    using Observer = std::function<void(const DocumentUpdate&)>;
    using ObserverId = std::uint64_t;

    // Reads this installation's client identifier from the preferences, or makes and stores one.
    explicit Document(Preferences& preferences, const PictureCodec* pictureCodec = nullptr,
                      Clock clock = {});
    ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    const Identifier& clientIdentifier() const { return m_clientIdentifier; }
    // Names this open notebook in drag data: new for every document, so that two notebooks
    // sharing note identifiers (a Save As copy and its original) never pass for each other.
    const Identifier& sessionIdentifier() const { return m_sessionIdentifier; }
    TimePoint now() const;

    const NodePtr& rootNode() const { return m_rootNode; }
    const NodePtr& deletedRootNode() const { return m_deletedRootNode; }
    std::size_t nodeCount() const { return m_nodeLookup.size(); }

    // The node indexed under the identifier, or null.
    NodePtr node(const Identifier& identifier) const;
    // Either root is an ancestor of every node; a node is never its own ancestor.
    bool isNode(const NotebookNode& a, const NotebookNode& ancestorOf) const;

    // Replays every record onto the tree with journaling and notifications off, then adopts the
    // client's own records as the log that saving writes back.
    void loadData(std::vector<DocumentDiff> mergedDiffs, std::vector<DocumentDiff> clientDiffs);
    // Applies one record to the tree; announces the outcome to the observers when asked. Records
    // from elsewhere come here through a replay or a merge, the document's own through its edits.
    void applyDiff(const DocumentDiff& diff, bool withNotification = false);

    // Edits journaled with their reverse but registering no undo step: for building a notebook,
    // and for userDidEditTogether. Adding takes the child as a template: its dictionary form is
    // recorded and a new node is built from it. Moving to a place names the child there.
    void add(const NotebookNode& child, const NotebookNode& toNode, long at);
    void move(NotebookNode& child, const NotebookNode& toParentNode, std::optional<std::size_t> at);

    // The user's edits. Each builds one record, journals it with its reverse (when journaling is
    // on), applies it with notification, and names and registers one undo step.
    void userDidModify(NotebookNode& node, std::string text);
    void userDidAdd(const NotebookNode& child, const NotebookNode& toNode, long at);
    void userDidMove(NotebookNode& child, const NotebookNode& toParent,
                     std::optional<std::size_t> at = std::nullopt);
    void userDidMove(NotebookNode& child, std::size_t to);
    // Runs edits made with add() and move(), which register no step, and registers what they
    // journaled as one undo step under the name: an import or a paste of many notes is undone and
    // redone as a whole.
    void userDidEditTogether(const char* actionName, const std::function<void()>& edits);

    // Deleting moves the note to the end of the deleted notes; the record also says where the note
    // stood, so that it can be put back there later, also by another installation.
    void userDidDelete(NotebookNode& node, const char* actionName = "Delete Note");
    // Moves a deleted note back to its former parent at its former place while that parent is in
    // the notebook outside the deleted notes, else to the end of the top level.
    void userDidPutBack(NotebookNode& node);
    const DeletionOrigin* deletionOrigin(const Identifier& node) const {
        return m_deletionOrigins.find(node);
    }
    // Whether the node stands in the tree under the root, not among the deleted notes.
    bool isInNotebook(const NotebookNode& node) const;

    // This client's log: the records a save writes to its journal.
    const std::vector<DocumentDiff>& diffs() const { return m_diffs; }

    // The history the app's Edit menu drives; undo and redo run only through it. Its steps call
    // back into this document: clear it (removeAllActions) or drop it before the document goes.
    void setUndoManager(UndoManager* undoManager) { m_undoManager = undoManager; }
    // Told when an undo step is refused. The step leaves the history and its records stay in the
    // log, as what it did stays in the notebook; older steps can still be undone.
    void setUndoRefusedHandler(std::function<void(UndoObstacle)> handler) {
        m_undoRefused = std::move(handler);
    }

    // Edits and redos count up, undos count down; the document has unsaved changes while the
    // count differs from the one recorded at the last save.
    std::int64_t changeCount() const { return m_changeCount; }
    bool hasUnsavedChanges() const { return m_changeCount != m_savedChangeCount; }
    void markSaved() { m_savedChangeCount = m_changeCount; }

    // Observers run synchronously inside applyDiff(), after the tree changed. Removing an
    // observer is safe at any time, also from inside a callback.
    ObserverId addObserver(Observer observer);
    void removeObserver(ObserverId id);

    // Pictures.
    ImageStore& images() { return m_images; }
    const ImageStore& images() const { return m_images; }
    Identifier addImage(PicturePtr image, std::vector<std::uint8_t> originalData,
                        std::string fileExtension);
    PicturePtr image(const Identifier& key) const;
    std::optional<std::filesystem::path> url(const Identifier& imageKey) const;

    // Several processes and machines write one package. These keep an open document in step.

    // This client's journal as this process last read or wrote it: a save reads the journal
    // again, and keeps what another process added, only when it changed since.
    const std::optional<FileIdentity>& ownJournalIdentity() const { return m_ownJournalIdentity; }
    void setOwnJournalIdentity(std::optional<FileIdentity> identity);
    // Records of this client's journal that another process of this installation (the
    // command-line tool, a second app) or a machine of the same identity wrote. Saving writes them
    // with the log; undo never takes them back.
    const std::vector<DocumentDiff>& adoptedDiffs() const { return m_adoptedDiffs; }
    // Takes the records of copies of this client's journal read from disk: those neither the log
    // nor the adopted records hold are adopted and merged into the tree. Gives how many.
    std::size_t adoptOwnJournalRecords(std::vector<std::vector<DocumentDiff>> copies);
    // What a save writes as this client's journal: the log and the adopted records.
    std::vector<DocumentDiff> journalRecords() const;

    // Each journal file of the package as it was when its records were applied, by name.
    const std::map<std::string, FileIdentity>& journalIdentities() const {
        return m_journalIdentities;
    }
    // Records the files whose records were applied; this client's journal among them counts as
    // read (see ownJournalIdentity).
    void setJournalIdentities(std::map<std::string, FileIdentity> identities);
    // How far each journal file of the package was applied (see JournalMark), by name.
    const std::map<std::string, JournalMark>& journalMarks() const { return m_journalMarks; }
    void setJournalMark(const std::string& journalName, JournalMark mark) {
        m_journalMarks[journalName] = mark;
    }
    // The place in the package's merged order of the last record applied: its stamp and the name
    // of its journal file. Set by a read; edits and merges move it on.
    void setLastApplied(TimePoint timestamp, std::string journalName);

    enum class MergeOutcome { nothingNew, applied, needsReplay };
    // Records that journals of the open package gained at their end, each list after the records
    // of its file already applied (package::readChanges finds them). When all of them come after
    // everything applied in the package's merged order, and each finds the notes it needs, they
    // are applied in that order with the ordinary notifications: `applied`. Otherwise nothing
    // changes and the answer is `needsReplay`: replay the package off the main thread
    // (package::replay) and hand the result to adoptReplayedTree().
    MergeOutcome mergeRecords(std::vector<NamedRecords> appended);
    // Whether records reached this document that only a replay can place (see mergeRecords):
    // set when a save adopted such records from disk; cleared by adoptReplayedTree().
    bool needsReplay() const { return m_needsReplay; }
    // Takes the tree, pictures found on disk and journal marks of a document of the same client
    // freshly read from the package, keeping this document's log, adopted records, undo and
    // redo stacks and observers; records of this client's journal that the fresh read found are
    // adopted. Announces one `reloadedTree` update: views rebuild and find their notes again by
    // identifier.
    void adoptReplayedTree(Document& fresh);

    // Where the package lives; absent until the document was read from or saved to disk.
    const std::optional<std::filesystem::path>& fileLocation() const { return m_fileLocation; }
    void setFileLocation(std::optional<std::filesystem::path> location);
    // The package folder this document was read from or last saved to, so that a save finds out
    // when the folder at its location is no longer that one (moved, deleted, replaced).
    const std::optional<FileIdentity>& packageIdentity() const { return m_packageIdentity; }
    void setPackageIdentity(std::optional<FileIdentity> identity) { m_packageIdentity = identity; }

private:
    friend class ReplayRun;

    struct ObserverEntry {
        ObserverId id;
        Observer observer;
    };

    struct ChangeOutcome;
    struct Place {
        NodePtr parent;
        std::optional<std::size_t> index;
    };

    // Indexes the node itself (not its descendants), replacing what was indexed there.
    void addLookup(NodePtr node);
    void appendDiff(DocumentDiff diff);
    // Counts one change.
    void touch();
    void modify(NotebookNode& node, std::string text);
    void move(NotebookNode& child, std::size_t to);
    // Where a deleted note goes back to (see userDidPutBack); no index means the end.
    Place putBackPlace(const NotebookNode& node) const;
    // The record that takes a forward record back, read off the tree before it is applied.
    DocumentDiff reverseDiff(const DocumentDiff& forward) const;
    void registerUndo();
    // Take back or apply again that many records (one undo step's worth) and register the step
    // that goes the other way.
    void undo(std::size_t records = 1);
    void redo(std::size_t records = 1);
    // What keeps the top records of the undo stack from being taken back as they were made.
    std::optional<UndoObstacle> undoObstacle(std::size_t records) const;
    void announce(const DocumentUpdate& update);
    // Journals the record with its reverse when journaling is on, then applies it with
    // notification.
    void record(DocumentDiff diff);
    void registerUserStep(const char* actionName);
    // The node under the node's parent identifier, or null.
    NotebookNode* parentOf(const NotebookNode& node) const {
        if (NotebookNode* parent = node.parentNode())
            return parent;
        return m_nodeLookup.find(node.parentIdentifier());
    }
    // Whether the candidate is the ancestor itself or lies in its subtree.
    bool liesWithin(const NotebookNode& candidate, const Identifier& ancestor) const;
    std::optional<DocumentUpdate> applyCreation(const DocumentDiff& diff);
    std::optional<DocumentUpdate> applyDestroy(const NodePtr& target);
    std::optional<DocumentUpdate> applyChange(const NodePtr& target,
                                              const PlainDictionary& payload);
    void reorder(NotebookNode& target, const std::string& key, const PlainValue& value,
                 ChangeOutcome& outcome);
    void reparent(const NodePtr& target, const PlainValue& value, const PlainDictionary& payload,
                  ChangeOutcome& outcome);

    Identifier m_clientIdentifier;
    Identifier m_sessionIdentifier = Identifier::makeRandom();
    Clock m_clock;
    std::vector<DocumentDiff> m_diffs;
    // A record's reverse, and where the record stands in the log: a refused undo step leaves its
    // records there, so the log's end is not always the record an undo takes back.
    struct Reversal {
        DocumentDiff reverse;
        std::size_t logIndex;
    };
    std::vector<Reversal> m_undoDiffs;
    std::vector<DocumentDiff> m_redoDiffs;
    NodePtr m_rootNode;
    NodePtr m_deletedRootNode;
    NodeIndex m_nodeLookup;
    bool m_journalingEnabled = true;
    ImageStore m_images;
    DeletionOrigins m_deletionOrigins;
    std::optional<std::filesystem::path> m_fileLocation;
    std::optional<FileIdentity> m_packageIdentity;
    UndoManager* m_undoManager = nullptr;
    std::function<void(UndoObstacle)> m_undoRefused;
    std::int64_t m_changeCount = 0;
    std::int64_t m_savedChangeCount = 0;
    std::vector<ObserverEntry> m_observers;
    ObserverId m_nextObserverId = 1;
    int m_announcing = 0; // nesting depth of announce(); removals wait until it is back to 0
    bool m_lastEditJournaled = false;
    // Counts records that took nodes out of the tree for good, which may free them.
    std::uint64_t m_removals = 0;
    // Parents that records of the last replay named but no record created.
    std::vector<Identifier> m_unresolvedParents;
    std::optional<FileIdentity> m_ownJournalIdentity;
    std::vector<DocumentDiff> m_adoptedDiffs;
    std::map<std::string, JournalMark> m_journalMarks;
    std::map<std::string, FileIdentity> m_journalIdentities;
    TimePoint m_lastAppliedTime{};
    std::string m_lastAppliedJournal;
    bool m_needsReplay = false;
};

} // namespace quillery
