#include "DocumentFixture.h"

namespace quillery {
namespace {

using testing_support::DocumentFixture;

class Replay : public DocumentFixture {};

TEST_F(Replay, AppliesMergedRecordsSilentlyAndAdoptsTheClientLog) {
    const Identifier note = Identifier::makeRandom();
    std::vector<DocumentDiff> merged{
        DocumentDiff(m_time, note, {{"text", "n"}, {"parent", "root"}}),
        DocumentDiff(m_time, note, {{"text", "edited"}}),
        DocumentDiff(m_time, note, {{"parent", "deleted"}})};
    std::vector<DocumentDiff> mine{merged[1]};
    m_document.loadData(merged, mine);
    EXPECT_EQ(outline(), "root() deleted(edited())");
    EXPECT_TRUE(m_updates.empty());
    ASSERT_EQ(m_document.diffs().size(), 1u);
    EXPECT_EQ(m_document.diffs()[0].payload, mine[0].payload);
    EXPECT_TRUE(m_document.journalingEnabled());
    EXPECT_FALSE(m_document.hasUnsavedChanges());
}

TEST_F(Replay, EmptyReplayKeepsTheRoots) {
    m_document.loadData({}, {});
    EXPECT_EQ(outline(), "root() deleted()");
    EXPECT_EQ(m_document.nodeCount(), 2u);
    EXPECT_TRUE(m_document.diffs().empty());
}

TEST_F(Replay, TouchCountsAChangeAndStampsIt) {
    m_time += std::chrono::hours(1);
    m_document.touch();
    EXPECT_EQ(m_document.changeCount(), 1);
    EXPECT_EQ(m_document.lastModified(), m_time);
    EXPECT_TRUE(m_document.hasUnsavedChanges());
    m_document.markSaved();
    EXPECT_FALSE(m_document.hasUnsavedChanges());
}

TEST_F(Replay, AVeryDeepTreeIsBuiltWalkedAndFreedWithoutRecursion) {
    std::vector<DocumentDiff> chain;
    Identifier parent("root");
    for (int i = 0; i < 200000; ++i) {
        Identifier note = Identifier::makeRandom();
        chain.emplace_back(m_time, note, PlainDictionary{{"text", ""}, {"parent", parent}});
        parent = note;
    }
    {
        InMemoryPreferences preferences;
        Document deep(preferences);
        deep.loadData(std::move(chain), {});
        NodePtr deepest = deep.node(parent);
        ASSERT_TRUE(deepest);
        NodePtr first = deep.rootNode()->children().front();
        EXPECT_TRUE(deep.isNode(*first, *deepest));
    } // freeing a chain this long by recursion would overflow the stack
    SUCCEED();
}

class Observers : public DocumentFixture {
protected:
    void edit() { m_document.modify(*m_document.rootNode(), "x"); }
};

TEST_F(Observers, SeeTheTreeAlreadyChanged) {
    std::string seen;
    m_document.addObserver([&](const DocumentUpdate& update) { seen = update.node->text(); });
    m_document.modify(*m_document.rootNode(), "new");
    EXPECT_EQ(seen, "new");
}

TEST_F(Observers, CanUnsubscribeThemselvesAndOthersFromInsideACallback) {
    std::vector<std::string> calls;
    Document::ObserverId self = 0;
    Document::ObserverId later = 0;
    self = m_document.addObserver([&](const DocumentUpdate&) {
        calls.push_back("self");
        m_document.removeObserver(self);
        m_document.removeObserver(later);
    });
    later = m_document.addObserver([&](const DocumentUpdate&) { calls.push_back("later"); });
    m_document.addObserver([&](const DocumentUpdate&) { calls.push_back("last"); });
    edit();
    edit();
    EXPECT_EQ(calls, (std::vector<std::string>{"self", "last", "last"}));
}

TEST_F(Observers, AddedDuringACallbackHearOnlyLaterUpdates) {
    int inner = 0;
    bool added = false;
    m_document.addObserver([&](const DocumentUpdate&) {
        if (!added) {
            added = true;
            for (int i = 0; i < 50; ++i) // enough to move the stored observers
                m_document.addObserver([&](const DocumentUpdate&) { ++inner; });
        }
    });
    edit();
    EXPECT_EQ(inner, 0);
    edit();
    EXPECT_EQ(inner, 50);
}

TEST_F(Observers, RemovedObserverIsNotCalledAgain) {
    int calls = 0;
    auto id = m_document.addObserver([&](const DocumentUpdate&) { ++calls; });
    edit();
    m_document.removeObserver(id);
    edit();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(m_updates.size(), 2u);
}

} // namespace
} // namespace quillery
