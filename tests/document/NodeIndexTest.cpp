#include "document/NodeIndex.h"

#include <gtest/gtest.h>
#include <map>
#include <random>

namespace quillery {
namespace {

// The parameter is a room made before the first node and again, doubled, halfway through:
// growing, rehashing a full index and reserving less than there is must all keep every entry.
class NodeIndexAgainstAMap : public testing::TestWithParam<std::size_t> {};

TEST_P(NodeIndexAgainstAMap, AgreesThroughGrowthReservationAndErasure) {
    NodeIndex index;
    index.reserve(GetParam());
    std::map<Identifier, NodePtr> expected;
    std::vector<Identifier> known;
    std::mt19937 random(7);
    for (int i = 0; i < 20000; ++i) {
        if (i == 10000)
            index.reserve(GetParam() * 2);
        if (known.empty() || random() % 3 != 0) {
            // A few short texts among the UUIDs exercise both forms of identifier.
            Identifier identifier =
                random() % 10 == 0 ? Identifier("t" + std::to_string(i)) : Identifier::makeRandom();
            auto node = std::make_shared<NotebookNode>(identifier, Identifier("root"), "");
            index.insertOrAssign(node);
            expected[identifier] = node;
            known.push_back(identifier);
        } else {
            const Identifier& victim = known[random() % known.size()];
            EXPECT_EQ(index.erase(victim), expected.erase(victim) == 1);
        }
    }
    ASSERT_EQ(index.size(), expected.size());
    for (const Identifier& identifier : known) {
        auto found = expected.find(identifier);
        NotebookNode* indexed = index.find(identifier);
        if (found == expected.end())
            EXPECT_EQ(indexed, nullptr);
        else
            EXPECT_EQ(indexed, found->second.get());
    }
}

INSTANTIATE_TEST_SUITE_P(Reservations, NodeIndexAgainstAMap,
                         testing::Values(std::size_t{0}, std::size_t{100}, std::size_t{6000},
                                         std::size_t{40000}));

TEST(NodeIndex, ReplacesTheNodeOfAnIdentifierAlreadyThere) {
    NodeIndex index;
    auto first = std::make_shared<NotebookNode>(Identifier("a"), Identifier("root"), "1");
    auto second = std::make_shared<NotebookNode>(Identifier("a"), Identifier("root"), "2");
    index.insertOrAssign(first);
    index.insertOrAssign(second);
    EXPECT_EQ(index.size(), 1u);
    EXPECT_EQ(index.find(Identifier("a")), second.get());
    EXPECT_EQ(*index.findShared(Identifier("a")), second);
    EXPECT_FALSE(index.erase(Identifier("b")));
}

} // namespace
} // namespace quillery
