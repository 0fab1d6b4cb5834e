#include "model/NotebookNode.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

TEST(NotebookNode, NewNoteGetsAFreshIdentifierAndNothingElse) {
    NodePtr a = NotebookNode::create(Identifier("root"), "a");
    NodePtr b = NotebookNode::create(Identifier("root"), "b");
    EXPECT_EQ(a->identifier().toString().size(), 36u);
    EXPECT_FALSE(a->identifier() == b->identifier());
    EXPECT_FALSE(a->imageIdentifier());
    EXPECT_FALSE(a->url());
    EXPECT_TRUE(a->children().empty());
}

TEST(NotebookNode, EmptinessLooksAtTextAndPictureOnly) {
    NodePtr parent = NotebookNode::create(Identifier("root"), "", std::nullopt, "https://x.org");
    parent->children().push_back(NotebookNode::create(parent->identifier(), "child"));
    EXPECT_TRUE(parent->isEmpty());
    EXPECT_FALSE(NotebookNode::create(Identifier("root"), " ")->isEmpty());
    EXPECT_FALSE(NotebookNode::create(Identifier("root"), "", Identifier::makeRandom())->isEmpty());
}

TEST(NodeDictionary, HoldsOptionalKeysOnlyWhenPresent) {
    NodePtr plain = NotebookNode::create(Identifier("root"), "text");
    PlainDictionary dictionary = PlainDictionaryFromNotebookNode(*plain);
    EXPECT_EQ(dictionary.size(), 3u);
    EXPECT_EQ(dictionary.find("identifier")->identifier(), plain->identifier());
    EXPECT_EQ(dictionary.find("text")->text(), "text");
    EXPECT_EQ(dictionary.find("parent")->text(), "root");

    const Identifier picture = Identifier::makeRandom();
    NodePtr rich = NotebookNode::create(Identifier("root"), "", picture, "https://x.org/a.png");
    PlainDictionary richDictionary = PlainDictionaryFromNotebookNode(*rich);
    EXPECT_EQ(richDictionary.size(), 5u);
    EXPECT_EQ(richDictionary.find("image")->identifier(), picture);
    EXPECT_EQ(richDictionary.find("url")->text(), "https://x.org/a.png");
}

TEST(NodeDictionary, RebuildsWithTheRecordsIdentifier) {
    const Identifier recordIdentifier = Identifier::makeRandom();
    PlainDictionary dictionary{{"identifier", Identifier::makeRandom()},
                               {"text", ""},
                               {"parent", "root"},
                               {"url", "https://example.com"}};
    NodePtr node = NotebookNodeFromPlainDictionary(recordIdentifier, {}, dictionary);
    ASSERT_TRUE(node);
    EXPECT_EQ(node->identifier(), recordIdentifier);
    EXPECT_EQ(node->text(), "");
    EXPECT_TRUE(node->parentIdentifier() == std::string_view("root"));
    EXPECT_EQ(node->url(), "https://example.com");
    EXPECT_TRUE(node->children().empty());
}

TEST(NodeDictionary, NeedsTextAndParentTextsButToleratesOddOptionalValues) {
    const Identifier id = Identifier::makeRandom();
    EXPECT_FALSE(NotebookNodeFromPlainDictionary(id, {}, {{"parent", "root"}}));
    EXPECT_FALSE(NotebookNodeFromPlainDictionary(id, {}, {{"text", "t"}}));
    EXPECT_FALSE(NotebookNodeFromPlainDictionary(id, {}, {{"text", true}, {"parent", "root"}}));
    EXPECT_FALSE(
        NotebookNodeFromPlainDictionary(id, {}, {{"text", "t"}, {"parent", RawJson{"42"}}}));
    NodePtr node = NotebookNodeFromPlainDictionary(
        id, {}, {{"text", "t"}, {"parent", "root"}, {"image", RawJson{"7"}}, {"url", false}});
    ASSERT_TRUE(node);
    EXPECT_FALSE(node->imageIdentifier());
    EXPECT_FALSE(node->url());
}

} // namespace
} // namespace quillery
