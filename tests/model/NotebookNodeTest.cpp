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

// A note is recorded by its dictionary and rebuilt from it under the record's identifier.
TEST(NodeDictionary, RebuildsTheNoteUnderTheRecordsIdentifier) {
    const Identifier picture = Identifier::makeRandom();
    for (const NodePtr& note : {NotebookNode::create(rootIdentifier(), "text"),
                                NotebookNode::create(rootIdentifier(), "", picture, "u")}) {
        const PlainDictionary dictionary = PlainDictionaryFromNotebookNode(*note);
        EXPECT_EQ(dictionary.size(), note->imageIdentifier() ? 5u : 3u);
        EXPECT_EQ(dictionary.find("identifier")->identifier(), note->identifier());
        const Identifier recorded = Identifier::makeRandom();
        NodePtr rebuilt = NotebookNodeFromPlainDictionary(recorded, dictionary);
        ASSERT_TRUE(rebuilt);
        EXPECT_EQ(rebuilt->identifier(), recorded);
        EXPECT_EQ(PlainDictionaryFromNotebookNode(*rebuilt).find("identifier")->identifier(),
                  recorded);
        EXPECT_EQ(rebuilt->text(), note->text());
        EXPECT_EQ(rebuilt->parentIdentifier(), rootIdentifier());
        EXPECT_EQ(rebuilt->imageIdentifier(), note->imageIdentifier());
        EXPECT_EQ(rebuilt->url(), note->url());
    }
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
