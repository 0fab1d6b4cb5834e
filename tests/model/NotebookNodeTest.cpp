#include "model/NotebookNode.h"

#include "model/PlainDictionaryPrinter.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

TEST(NotebookNode, EmptinessLooksAtTextAndPictureOnly) {
    NodePtr parent = NotebookNode::create(rootIdentifier(), "", std::nullopt, "https://x.org");
    parent->children().push_back(NotebookNode::create(parent->identifier(), "child"));
    EXPECT_TRUE(parent->isEmpty());
    EXPECT_FALSE(NotebookNode::create(rootIdentifier(), " ")->isEmpty());
    EXPECT_FALSE(NotebookNode::create(rootIdentifier(), "", Identifier::makeRandom())->isEmpty());
}

TEST(NodeDictionary, NeedsTextAndParentTextsButToleratesOddOptionalValues) {
    const Identifier id = Identifier::makeRandom();
    EXPECT_FALSE(NotebookNodeFromPlainDictionary(id, {{"parent", "root"}}));
    EXPECT_FALSE(NotebookNodeFromPlainDictionary(id, {{"text", "t"}}));
    EXPECT_FALSE(NotebookNodeFromPlainDictionary(id, {{"text", true}, {"parent", "root"}}));
    EXPECT_FALSE(NotebookNodeFromPlainDictionary(id, {{"text", "t"}, {"parent", RawJson{"42"}}}));
    NodePtr node = NotebookNodeFromPlainDictionary(
        id, {{"text", "t"}, {"parent", "root"}, {"image", RawJson{"7"}}, {"url", false}});
    ASSERT_TRUE(node);
    EXPECT_FALSE(node->imageIdentifier());
    EXPECT_FALSE(node->url());
}

} // namespace
} // namespace quillery
