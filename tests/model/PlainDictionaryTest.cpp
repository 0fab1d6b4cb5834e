#include "model/PlainDictionary.h"

#include "model/PlainDictionaryPrinter.h"

#include <gtest/gtest.h>

namespace quillery {
namespace {

TEST(PlainDictionary, CopiesAreIndependentOnceEitherChanges) {
    PlainDictionary original{{"text", "a"}, {"parent", "root"}};
    PlainDictionary copy = original;
    copy.set("text", "b");
    copy.erase("parent");
    original.set("before", Identifier::makeRandom());
    EXPECT_EQ(original.find("text")->text(), "a");
    EXPECT_TRUE(original.contains("parent"));
    EXPECT_EQ(copy, (PlainDictionary{{"text", "b"}}));
    EXPECT_FALSE(copy.contains("before"));
}

TEST(PlainDictionary, KeepsInsertionOrderAndReplacesInPlace) {
    PlainDictionary dictionary;
    for (int i = 0; i < 12; ++i)
        dictionary.set("k" + std::to_string(i), i % 2 == 0);
    dictionary.set("k3", "three");
    dictionary.erase("k0");
    std::vector<std::string> keys;
    for (const auto& [key, value] : dictionary)
        keys.push_back(key);
    ASSERT_EQ(keys.size(), 11u);
    EXPECT_EQ(keys.front(), "k1");
    EXPECT_EQ(keys[2], "k3");
    EXPECT_EQ(dictionary.find("k3")->text(), "three");
    EXPECT_FALSE(dictionary.erase("k0"));
}

TEST(PlainDictionary, MergeReplacesAndAddsAndMayMergeWithItself) {
    PlainDictionary target{{"timestamp", "t"}, {"identifier", "a"}};
    target.merge({{"identifier", "b"}, {"text", ""}});
    EXPECT_EQ(target, (PlainDictionary{{"timestamp", "t"}, {"identifier", "b"}, {"text", ""}}));
    target.merge(target);
    EXPECT_EQ(target.size(), 3u);
}

TEST(PlainDictionary, EqualityIgnoresOrderButNotKindOfValue) {
    EXPECT_EQ((PlainDictionary{{"a", "1"}, {"b", true}}),
              (PlainDictionary{{"b", true}, {"a", "1"}}));
    EXPECT_NE((PlainDictionary{{"a", "1"}}), (PlainDictionary{{"a", RawJson{"1"}}}));
    EXPECT_NE((PlainDictionary{{"a", "true"}}), (PlainDictionary{{"a", true}}));
    EXPECT_EQ((PlainDictionary{{"a", RawJson{"[1]"}}}), (PlainDictionary{{"a", RawJson{"[1]"}}}));
}

TEST(PlainValue, TextsOfEveryLengthAndFormComeBackUnchanged) {
    const std::string uuid = "0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF";
    const std::string nilUuid = "00000000-0000-0000-0000-000000000000";
    for (const std::string& text :
         {std::string(), std::string("root"), std::string("12345678"), std::string("123456789"),
          std::string(10000, 'x'), uuid, nilUuid, std::string("caf\xc3\xa9")}) {
        PlainValue value(text);
        EXPECT_TRUE(value.isText());
        EXPECT_EQ(value.text(), text);
        EXPECT_EQ(value.identifier()->toString(), text);
        EXPECT_EQ(value, PlainValue(Identifier(text)));
    }
    EXPECT_TRUE(PlainValue(uuid).textIdentifier()->isUuid());
    EXPECT_FALSE(PlainValue(nilUuid).textIdentifier()->isUuid());
    EXPECT_FALSE(PlainValue(true).text());
    EXPECT_EQ(PlainValue(RawJson{"null"}).rawJson()->text, "null");
}

} // namespace
} // namespace quillery
