#include "model/Identifier.h"

#include <gtest/gtest.h>
#include <set>
#include <unordered_set>

namespace quillery {
namespace {

// Only the canonical upper-case form is held compactly; every near miss must stay the text it
// was: a digit just outside the upper-case hexadecimal ranges anywhere, a hyphen out of place,
// another variant, another length.
TEST(Identifier, TextsThatAlmostLookLikeUuidsStayTexts) {
    const std::string canonical = "0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF";
    EXPECT_TRUE(Identifier(canonical).isUuid());
    EXPECT_EQ(Identifier(canonical).toString(), canonical);
    EXPECT_FALSE(Identifier("0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0ff") == Identifier(canonical));
    EXPECT_TRUE(Identifier("") == Identifier());
    std::vector<std::string> nearMisses = {
        canonical.substr(1), canonical + "0", "0F1E2D3C4-B5A-4978-8695-A4B3C2D1E0FF",
        "0F1E2D3C-4B5A-4978-7695-A4B3C2D1E0FF", "0F1E2D3C-4B5A-4978-C695-A4B3C2D1E0FF"};
    for (std::size_t i = 0; i < canonical.size(); ++i) {
        if (canonical[i] == '-')
            continue;
        for (char flaw : {'/', ':', '@', 'G', '`', 'a', 'f', '\0', '\xC3'}) {
            std::string text = canonical;
            text[i] = flaw;
            nearMisses.push_back(text);
        }
    }
    for (const std::string& text : nearMisses) {
        Identifier identifier(text);
        EXPECT_FALSE(identifier.isUuid()) << text;
        EXPECT_EQ(identifier.toString(), text);
    }
    EXPECT_TRUE(Identifier("00000000-0000-0000-8000-000000000000").isUuid());
    EXPECT_TRUE(Identifier("FFFFFFFF-FFFF-FFFF-BFFF-FFFFFFFFFFFF").isUuid());
}

TEST(Identifier, OrdersAndHashesLikeItsText) {
    const std::set<std::string> texts = {"root",
                                         "A0000000-0000-4000-8000-000000000000",
                                         "9FFFFFFF-FFFF-4FFF-BFFF-FFFFFFFFFFFF",
                                         "deleted",
                                         "B",
                                         "A0000000-0000-4000-8000-000000000001"};
    std::set<Identifier> ordered;
    std::unordered_set<Identifier, IdentifierHash> hashed;
    for (const auto& text : texts) {
        ordered.insert(Identifier(text));
        hashed.insert(Identifier(text));
    }
    std::vector<std::string> fromIdentifiers;
    for (const auto& identifier : ordered)
        fromIdentifiers.push_back(identifier.toString());
    EXPECT_EQ(fromIdentifiers, std::vector<std::string>(texts.begin(), texts.end()));
    for (const auto& text : texts)
        EXPECT_EQ(hashed.count(Identifier(text)), 1u) << text;
}

TEST(Identifier, RandomIdentifiersAreVersionFourUpperCaseAndDistinct) {
    Identifier a = Identifier::makeRandom();
    Identifier b = Identifier::makeRandom();
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a.isUuid()) << "canonical upper-case form";
    EXPECT_EQ(a.toString()[14], '4');
}

} // namespace
} // namespace quillery
