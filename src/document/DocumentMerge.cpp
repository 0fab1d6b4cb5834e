// Keeping an open document in step with the package while other processes and machines write it.
#include "document/Document.h"

#include <algorithm>
#include <unordered_set>

namespace quillery {

namespace {

struct Placed {
    const DocumentDiff* diff;
    const std::string* journal;
};

bool inMergedOrder(const Placed& a, const Placed& b) {
    if (WholeSeconds(a.diff->timestamp) != WholeSeconds(b.diff->timestamp))
        return WholeSeconds(a.diff->timestamp) < WholeSeconds(b.diff->timestamp);
    return *a.journal < *b.journal;
}

} // namespace

void Document::setLastApplied(TimePoint timestamp, std::string journalName) {
    m_lastAppliedTime = WholeSeconds(timestamp);
    m_lastAppliedJournal = std::move(journalName);
}

void Document::setOwnJournalIdentity(std::optional<FileIdentity> identity) {
    m_ownJournalIdentity = identity;
    if (identity)
        m_journalIdentities[journalFileName(m_clientIdentifier)] = *identity;
}

void Document::setJournalIdentities(std::map<std::string, FileIdentity> identities) {
    auto own = identities.find(journalFileName(m_clientIdentifier));
    if (own != identities.end())
        m_ownJournalIdentity = own->second;
    m_journalIdentities = std::move(identities);
}

std::size_t Document::adoptOwnJournalRecords(std::vector<std::vector<DocumentDiff>> copies) {
    std::vector<DocumentDiff> held = journalRecords();
    std::vector<DocumentDiff> found = RecordsMissingFrom(UnionOfJournals(std::move(copies)), held);
    if (found.empty())
        return 0;
    m_adoptedDiffs.insert(m_adoptedDiffs.end(), found.begin(), found.end());
    std::vector<NamedRecords> appended;
    appended.push_back({journalFileName(m_clientIdentifier), found, std::nullopt});
    if (mergeRecords(std::move(appended)) == MergeOutcome::needsReplay)
        m_needsReplay = true;
    return found.size();
}

std::vector<DocumentDiff> Document::journalRecords() const {
    if (m_adoptedDiffs.empty())
        return m_diffs;
    return UnionOfJournals({m_diffs, m_adoptedDiffs});
}

Document::MergeOutcome Document::mergeRecords(std::vector<NamedRecords> appended) {
    std::vector<Placed> placed;
    for (const NamedRecords& journal : appended)
        for (const DocumentDiff& diff : journal.records)
            placed.push_back({&diff, &journal.journalName});
    if (placed.empty())
        return MergeOutcome::nothingNew;
    std::stable_sort(placed.begin(), placed.end(), inMergedOrder);
    const Placed& first = placed.front();
    const TimePoint firstTime = WholeSeconds(first.diff->timestamp);
    if (firstTime < m_lastAppliedTime ||
        (firstTime == m_lastAppliedTime && *first.journal < m_lastAppliedJournal))
        return MergeOutcome::needsReplay;
    // Each record must find its note and parent, as it would in a replay, or be a creation that
    // a replay would have put elsewhere.
    std::unordered_set<Identifier, IdentifierHash> created;
    auto exists = [&](const Identifier& note) {
        return m_nodeLookup.find(note) || created.contains(note);
    };
    for (const Placed& entry : placed) {
        const DocumentDiff& diff = *entry.diff;
        const PlainValue* parentValue = diff.payload.find("parent");
        const Identifier* parent = parentValue ? parentValue->textIdentifier() : nullptr;
        if (parent && !exists(*parent))
            return MergeOutcome::needsReplay;
        if (!exists(diff.identifier)) {
            const PlainValue* text = diff.payload.find("text");
            if (!parent || !text || !text->isText())
                return MergeOutcome::needsReplay;
            if (std::find(m_unresolvedParents.begin(), m_unresolvedParents.end(),
                          diff.identifier) != m_unresolvedParents.end())
                return MergeOutcome::needsReplay;
            created.insert(diff.identifier);
        }
    }
    // Records of this client's journal written by another process are saved with the log.
    const std::string own = journalFileName(m_clientIdentifier);
    for (const NamedRecords& journal : appended)
        if (journal.journalName == own) {
            std::vector<DocumentDiff> found = RecordsMissingFrom(journal.records, journalRecords());
            m_adoptedDiffs.insert(m_adoptedDiffs.end(), found.begin(), found.end());
        }
    for (const Placed& entry : placed)
        applyDiff(*entry.diff, true);
    setLastApplied(placed.back().diff->timestamp, *placed.back().journal);
    for (const NamedRecords& journal : appended)
        if (journal.markAfter)
            m_journalMarks[journal.journalName] = *journal.markAfter;
    return MergeOutcome::applied;
}

void Document::adoptReplayedTree(Document& fresh) {
    std::swap(m_rootNode, fresh.m_rootNode);
    std::swap(m_deletedRootNode, fresh.m_deletedRootNode);
    std::swap(m_nodeLookup, fresh.m_nodeLookup);
    std::swap(m_unresolvedParents, fresh.m_unresolvedParents);
    m_journalMarks = fresh.m_journalMarks;
    m_journalIdentities = fresh.m_journalIdentities;
    m_ownJournalIdentity = fresh.m_ownJournalIdentity;
    m_lastAppliedTime = std::max(m_lastAppliedTime, fresh.m_lastAppliedTime);
    if (fresh.m_lastAppliedTime >= m_lastAppliedTime)
        m_lastAppliedJournal = fresh.m_lastAppliedJournal;
    m_images.adoptStoredPictures(fresh.m_images);
    m_needsReplay = false;
    std::vector<DocumentDiff> held = journalRecords();
    std::vector<DocumentDiff> found = RecordsMissingFrom(fresh.m_diffs, held);
    m_adoptedDiffs.insert(m_adoptedDiffs.end(), found.begin(), found.end());
    ++m_removals;
    announce(DocumentUpdate{NodeUpdateType::reloadedTree, m_rootNode, std::nullopt, std::nullopt,
                            std::nullopt, std::nullopt});
}

} // namespace quillery
