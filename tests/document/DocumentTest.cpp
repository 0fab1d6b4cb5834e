#include "DocumentFixture.h"

namespace quillery {
namespace {

using testing_support::DocumentFixture;

TEST(DocumentBasics, ANewDocumentMakesTheClientIdentifierOnceAndSharesIt) {
    InMemoryPreferences preferences;
    Document first(preferences);
    EXPECT_EQ(preferences.string(kClientIdentifierKey), first.clientIdentifier().toString());
    Document second(preferences);
    EXPECT_EQ(second.clientIdentifier(), first.clientIdentifier());
    EXPECT_EQ(preferences.synchronizeCount(), 1);
}

TEST_F(DocumentFixture, AReplayAppliesSilentlyAndAdoptsTheClientLog) {
    const Identifier note = Identifier::makeRandom();
    std::vector<DocumentDiff> merged{
        DocumentDiff(m_time, note, {{"text", "n"}, {"parent", "root"}}),
        DocumentDiff(m_time, note, {{"text", "edited"}}),
        DocumentDiff(m_time, note, {{"parent", "deleted"}})};
    m_document.loadData(merged, {merged[1]});
    EXPECT_EQ(outline(), "root() deleted(edited())");
    EXPECT_TRUE(m_updates.empty());
    ASSERT_EQ(m_document.diffs().size(), 1u);
    EXPECT_EQ(m_document.diffs()[0].payload, merged[1].payload);
    EXPECT_FALSE(m_document.hasUnsavedChanges());
}

TEST_F(DocumentFixture, ObserversSeeTheTreeChangedAndMayUnsubscribeAnyoneFromACallback) {
    std::vector<std::string> calls;
    Document::ObserverId self = 0;
    Document::ObserverId later = 0;
    self = m_document.addObserver([&](const DocumentUpdate& update) {
        calls.push_back("self " + update.node->text());
        m_document.removeObserver(self);
        m_document.removeObserver(later);
    });
    later = m_document.addObserver([&](const DocumentUpdate&) { calls.push_back("later"); });
    m_document.addObserver([&](const DocumentUpdate&) { calls.push_back("last"); });
    m_document.userDidModify(*m_document.rootNode(), "x");
    m_document.userDidModify(*m_document.rootNode(), "y");
    EXPECT_EQ(calls, (std::vector<std::string>{"self x", "last", "last"}));
}

TEST_F(DocumentFixture, ObserversAddedDuringACallbackHearOnlyLaterUpdates) {
    int inner = 0;
    m_document.addObserver([&](const DocumentUpdate&) {
        if (m_updates.size() == 1)
            for (int i = 0; i < 50; ++i) // enough to move the stored observers
                m_document.addObserver([&](const DocumentUpdate&) { ++inner; });
    });
    m_document.userDidModify(*m_document.rootNode(), "x");
    EXPECT_EQ(inner, 0);
    m_document.userDidModify(*m_document.rootNode(), "y");
    EXPECT_EQ(inner, 50);
}

} // namespace
} // namespace quillery
