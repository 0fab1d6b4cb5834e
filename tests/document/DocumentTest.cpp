#include "document/Document.h"

#include "document/InMemoryPreferences.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

TEST(DocumentConstruction, HoldsTheTwoIndexedRoots) {
    InMemoryPreferences preferences;
    Document document(preferences);
    EXPECT_EQ(document.nodeCount(), 2u);
    EXPECT_EQ(document.node(Identifier("root")), document.rootNode());
    EXPECT_EQ(document.node(Identifier("deleted")), document.deletedRootNode());
    EXPECT_TRUE(document.rootNode()->parentIdentifier() == std::string_view("none"));
}

} // namespace
} // namespace quillery
