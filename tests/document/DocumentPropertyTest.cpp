#include "DocumentFixture.h"

#include <random>
#include <set>

namespace quillery {
namespace {

using testing_support::DocumentFixture;

// Long random sessions of edits, undos and redos, driven the way the columns drive a document.
class RandomSession : public DocumentFixture, public testing::WithParamInterface<unsigned> {
protected:
    RandomSession()
        : m_random(GetParam()) {}

    // Every node reachable from the roots, roots first.
    std::vector<NodePtr> reachable() const {
        std::vector<NodePtr> nodes{m_document.rootNode(), m_document.deletedRootNode()};
        for (std::size_t i = 0; i < nodes.size(); ++i)
            for (const NodePtr& child : nodes[i]->children())
                nodes.push_back(child);
        return nodes;
    }

    // Each node but the roots sits once in its parent's children, the parent identifiers agree,
    // and the index holds exactly the nodes of the tree.
    void expectSoundTree() const {
        std::set<const NotebookNode*> seen;
        for (const NodePtr& node : reachable()) {
            ASSERT_TRUE(seen.insert(node.get()).second) << "node met twice";
            ASSERT_EQ(m_document.node(node->identifier()), node) << "node not indexed";
            for (const NodePtr& child : node->children()) {
                ASSERT_EQ(child->parentIdentifier(), node->identifier());
                ASSERT_EQ(child->parentNode(), node.get());
            }
        }
        ASSERT_EQ(seen.size(), m_document.nodeCount()) << "index holds nodes outside the tree";
    }

    std::size_t below(std::size_t bound) { return m_random() % bound; }

    NodePtr pick(const std::vector<NodePtr>& nodes, bool allowRoots) {
        const std::size_t first = allowRoots ? 0 : 2;
        if (nodes.size() <= first)
            return nullptr;
        return nodes[first + below(nodes.size() - first)];
    }

    void step() {
        const std::vector<NodePtr> nodes = reachable();
        const std::size_t roll = below(100);
        if (roll < 12) {
            m_undoManager.undo();
        } else if (roll < 20) {
            m_undoManager.redo();
        } else if (roll < 45) {
            NodePtr parent = pick(nodes, true);
            NodePtr note =
                NotebookNode::create(parent->identifier(), "n" + std::to_string(m_added++));
            const long at = static_cast<long>(below(parent->children().size() + 3)) - 1;
            m_document.userDidAdd(*note, *parent, at);
        } else if (NodePtr node = pick(nodes, false); !node) {
            return;
        } else if (roll < 60) {
            m_document.userDidModify(*node, node->text() + "'");
        } else if (roll < 75) {
            NodePtr parent = pick(nodes, true);
            // The columns refuse a drop into the dragged note's own subtree.
            if (parent == node || m_document.isNode(*node, *parent))
                return;
            std::optional<std::size_t> at;
            if (!parent->children().empty() && below(2) == 0)
                at = below(parent->children().size());
            m_document.userDidMove(*node, *parent, at);
        } else if (roll < 85) {
            m_document.userDidMove(*node, *m_document.deletedRootNode());
        } else {
            NodePtr parent = m_document.node(node->parentIdentifier());
            m_document.userDidMove(*node, below(parent->children().size() + 1));
        }
    }

    std::mt19937 m_random;
    int m_added = 0;
};

TEST_P(RandomSession, KeepsTheTreeSoundAndUndoesBackToEmpty) {
    for (int i = 0; i < 1500; ++i) {
        step();
        expectSoundTree();
        if (HasFatalFailure())
            FAIL() << "after step " << i;
    }
    const std::string before = outline();
    const std::size_t journalLength = m_document.diffs().size();
    while (m_undoManager.canUndo()) {
        m_undoManager.undo();
        expectSoundTree();
        ASSERT_FALSE(HasFatalFailure());
    }
    EXPECT_EQ(outline(), "root() deleted()");
    EXPECT_EQ(m_document.nodeCount(), 2u);
    EXPECT_TRUE(m_document.diffs().empty());
    EXPECT_EQ(m_document.changeCount(), 0);

    while (m_undoManager.canRedo()) {
        m_undoManager.redo();
        expectSoundTree();
        ASSERT_FALSE(HasFatalFailure());
    }
    EXPECT_EQ(outline(), before);
    EXPECT_EQ(m_document.diffs().size(), journalLength);

    // Replaying the journal on a fresh document builds the same tree.
    InMemoryPreferences preferences;
    Document replayed(preferences);
    replayed.loadData(m_document.diffs(), {});
    EXPECT_EQ(describe(*replayed.rootNode()), describe(*m_document.rootNode()));
    EXPECT_EQ(describe(*replayed.deletedRootNode()), describe(*m_document.deletedRootNode()));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomSession, testing::Values(1u, 2u, 3u, 4u));

} // namespace
} // namespace quillery
