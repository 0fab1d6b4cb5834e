#include "document/SearchIndex.h"

#include "DocumentFixture.h"
#include "SmallStack.h"
#include "document/TextFolding.h"

#include <algorithm>
#include <sstream>

namespace quillery {
namespace {

using testing_support::DocumentFixture;
using Texts = std::vector<std::string>;

// Under the root: "Groceries" (apple pie, pear) and "Garden" (apple tree), named "@groceries",
// "@pie", "@pear", "@garden" and "@tree". Results are listed by text, deleted notes marked "~".
class Searching : public DocumentFixture {
public:
    Searching() {
        groceries = addNote(m_document.rootNode(), "Groceries");
        pie = addNote(groceries, "apple pie");
        pear = addNote(groceries, "pear");
        garden = addNote(m_document.rootNode(), "Garden");
        tree = addNote(garden, "apple tree");
        m_named.insert({{"groceries", groceries->identifier()},
                        {"pie", pie->identifier()},
                        {"pear", pear->identifier()},
                        {"garden", garden->identifier()},
                        {"tree", tree->identifier()}});
        m_index = std::make_unique<SearchIndex>(m_document);
        m_index->waitUntilReady();
    }

    static Texts texts(SearchIndex& index, std::string_view query, bool deleted) {
        Texts result;
        for (const SearchHit& hit : index.find(query, deleted).hits)
            result.push_back((hit.deleted ? "~" : "") + hit.node->text());
        return result;
    }
    void add(const NodePtr& parent, std::string text, long at = -1) {
        m_document.userDidAdd(*NotebookNode::create(parent->identifier(), std::move(text)), *parent,
                              at);
    }

    // One change: "edit @x TEXT", "add @parent AT TEXT", "reorder @x AT", "move @x @parent AT",
    // "delete @x", "undo", or a record from another installation.
    void change(const std::string& step) {
        std::istringstream words(step);
        std::string verb, note, rest;
        words >> verb >> note;
        auto node = [&](const std::string& name) {
            return m_document.node(named(name.substr(1)));
        };
        auto number = [&] {
            long at = 0;
            words >> at;
            return at;
        };
        auto text = [&] {
            std::getline(words >> std::ws, rest);
            return rest;
        };
        if (verb == "edit") {
            m_document.userDidModify(*node(note), text());
        } else if (verb == "add") {
            const long at = number();
            add(node(note), text(), at);
        } else if (verb == "reorder") {
            m_document.userDidMove(*node(note), static_cast<std::size_t>(number()));
        } else if (verb == "move") {
            std::string parent;
            words >> parent;
            m_document.userDidMove(*node(note), *node(parent), static_cast<std::size_t>(number()));
        } else if (verb == "delete") {
            m_document.userDidMove(*node(note), *m_document.deletedRootNode());
        } else if (verb == "undo") {
            m_undoManager.undo();
        } else {
            m_document.applyDiff(record(step), true);
        }
    }

    NodePtr groceries, pie, pear, garden, tree;
    std::unique_ptr<SearchIndex> m_index; // made once the notes above are in place
};

// Changes, then a query ("~" first: deleted notes too) and what it finds.
struct ChangeCase {
    const char* name;
    std::vector<std::string> changes;
    std::string query;
    Texts found;

    friend void PrintTo(const ChangeCase& c, std::ostream* out) { *out << c.name; }
};

class IndexFollowsChanges : public Searching, public ::testing::WithParamInterface<ChangeCase> {};

TEST_P(IndexFollowsChanges, FindsWhatAFreshIndexFinds) {
    for (const std::string& step : GetParam().changes)
        change(step);
    const bool deleted = GetParam().query.starts_with('~');
    const std::string query = GetParam().query.substr(deleted ? 1 : 0);
    EXPECT_EQ(texts(*m_index, query, deleted), GetParam().found);
    SearchIndex fresh(m_document);
    fresh.waitUntilReady();
    EXPECT_EQ(texts(*m_index, query, deleted), texts(fresh, query, deleted));
}

// The same changes made while a new index is still being built are in it once it is ready.
TEST_P(IndexFollowsChanges, FindsTheSameWhenChangedWhileBuilding) {
    SearchIndex building(m_document);
    for (const std::string& step : GetParam().changes)
        change(step);
    building.waitUntilReady();
    const bool deleted = GetParam().query.starts_with('~');
    EXPECT_EQ(texts(building, GetParam().query.substr(deleted ? 1 : 0), deleted), GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, IndexFollowsChanges,
    ::testing::Values(
        ChangeCase{"Nothing", {}, "apple", {"apple pie", "apple tree"}},
        ChangeCase{"Edit", {"edit @pie Apple crumble"}, "apple", {"Apple crumble", "apple tree"}},
        ChangeCase{"AddFirst",
                   {"add @groceries 0 apple jam"},
                   "apple",
                   {"apple jam", "apple pie", "apple tree"}},
        ChangeCase{"AddLast",
                   {"add @garden -1 apple juice"},
                   "apple",
                   {"apple pie", "apple tree", "apple juice"}},
        ChangeCase{"Reorder", {"reorder @pie 2"}, "p", {"pear", "apple pie", "apple tree"}},
        ChangeCase{"MoveToAnotherParent",
                   {"move @tree @groceries 0"},
                   "apple",
                   {"apple tree", "apple pie"}},
        ChangeCase{"MoveAParentWithItsNotes",
                   {"reorder @garden 0"},
                   "a",
                   {"Garden", "apple tree", "apple pie", "pear"}},
        ChangeCase{"Delete", {"delete @pie"}, "apple", {"apple tree"}},
        ChangeCase{
            "DeletedWhenAsked", {"delete @groceries"}, "~apple", {"apple tree", "~apple pie"}},
        ChangeCase{"UndoDelete", {"delete @pie", "undo"}, "~apple", {"apple pie", "apple tree"}},
        ChangeCase{"DestroyAParent", {"@groceries destroy=true"}, "~apple", {"apple tree"}},
        ChangeCase{"MergedEdit", {"@tree text=plum-tree"}, "tree", {"plum-tree"}},
        ChangeCase{"MergedNote",
                   {"@new text=apple-cider parent=@garden"},
                   "apple",
                   {"apple pie", "apple tree", "apple-cider"}},
        ChangeCase{"WebAddress",
                   {"@new text=Reading url=https://example.org/Pears parent=@garden"},
                   "example pears",
                   {"Reading"}}),
    [](const auto& param) { return std::string(param.param.name); });

TEST_F(Searching, CountsAllButListsTheFirstInTreeOrder) {
    for (int i = 0; i < 600; ++i)
        addNote(garden, "crate " + std::to_string(i));
    SearchIndex index(m_document);
    index.waitUntilReady();
    SearchResults results = index.find("crate", false);
    EXPECT_EQ(results.total, 600u);
    ASSERT_EQ(results.hits.size(), SearchIndex::kShownResults);
    EXPECT_EQ(results.hits.back().node->text(), "crate 499");
}

TEST_F(Searching, CountsAsAPlainSearchOfEachNoteDoesWhileTyping) {
    // Notes of every length put words across every boundary of the scan's 64-byte steps; the
    // numbers make words rare enough to be checked note by note as they are typed.
    std::vector<std::string> notes{"Groceries", "apple pie", "pear", "Garden", "apple tree"};
    for (std::size_t k = 0; k < 3000; ++k) {
        notes.push_back(std::string(k % 97, 'a') + "bc" + std::string(k % 7, 'd') + "\nEf" +
                        std::to_string(k));
        addNote(garden, notes.back());
    }
    SearchIndex index(m_document);
    index.waitUntilReady();
    // Edited notes move to the slots after the built ones.
    for (std::size_t k : {500u, 1500u}) {
        notes[5 + k] = "Edited 2999 and abcdd " + std::to_string(k);
        m_document.userDidModify(*garden->children()[k + 1], notes[5 + k]);
    }
    auto count = [&](const std::vector<std::string>& words) {
        return static_cast<std::size_t>(
            std::count_if(notes.begin(), notes.end(), [&](const std::string& text) {
                return std::all_of(words.begin(), words.end(), [&](const std::string& word) {
                    return folding::fold(text).find(word) != std::string::npos;
                });
            }));
    };
    for (const std::string query :
         {"aaaaaaaaaaaaab", "bcd", "cdd", "ef2999", "2999", "ddd 1234", "ef 123 dd", "abc 100"}) {
        for (std::size_t typed = 1; typed <= query.size(); ++typed) {
            const std::string prefix = query.substr(0, typed);
            EXPECT_EQ(index.find(prefix, false).total, count(folding::queryWords(prefix)))
                << prefix;
        }
    }
}

TEST_F(Searching, NotesAddedAgainAndAgainAtOnePlaceStayInOrder) {
    // Each new note halves the gap between the keys around it until a rebuild is due.
    for (int i = 0; i < 100; ++i)
        add(groceries, "apple " + std::to_string(i), 0);
    m_index->waitUntilReady();
    SearchIndex fresh(m_document);
    fresh.waitUntilReady();
    EXPECT_EQ(texts(*m_index, "apple", false), texts(fresh, "apple", false));
    EXPECT_EQ(texts(*m_index, "apple", false).front(), "apple 99");
}

// A chain as deep as kDeepChain is read, searched, re-placed, walked up and freed on a stack that
// a recursion over it would overflow.
TEST(DeepChain, IsReadSearchedAndFreedWithoutRecursion) {
    std::vector<DocumentDiff> chain;
    Identifier parent("root");
    for (std::size_t i = 0; i < testing_support::kDeepChain; ++i) {
        Identifier note = Identifier::makeRandom();
        const char* text = i + 1 == testing_support::kDeepChain ? "bottom"
                           : i % 1000                           ? "step"
                                                                : "milestone";
        chain.emplace_back(TimePoint{}, note, PlainDictionary{{"text", text}, {"parent", parent}});
        parent = note;
    }
    testing_support::runOnSmallStack([&] {
        InMemoryPreferences preferences;
        Document deep(preferences);
        deep.loadData(std::move(chain), {});
        SearchIndex index(deep);
        index.waitUntilReady();
        NodePtr top = deep.rootNode()->children().front();
        deep.userDidAdd(*NotebookNode::create(rootIdentifier(), "first"), *deep.rootNode(), 0);
        deep.userDidMove(*top, 0);
        EXPECT_EQ(Searching::texts(index, "bottom", false), Texts{"bottom"});
        EXPECT_EQ(index.find("milestone", false).total, testing_support::kDeepChain / 1000);
        EXPECT_EQ(ancestorFirstLines(*deep.node(parent)).size(), testing_support::kDeepChain - 1);
    });
}

// A node shared with another holder outlives its parent with its children; the rest go.
TEST(DeepChain, ANodeHeldElsewhereKeepsItsSubtree) {
    testing_support::runOnSmallStack([] {
        NodePtr top = NotebookNode::create(rootIdentifier(), "top");
        NodePtr held;
        NotebookNode* last = top.get();
        for (std::size_t i = 0; i < testing_support::kDeepChain; ++i) {
            auto child = std::make_shared<NotebookNode>(Identifier("n"), Identifier("n"), "n");
            child->setParentNode(last);
            last->children().push_back(child);
            if (i == testing_support::kDeepChain / 2)
                held = child;
            last = child.get();
        }
        NodePtr below = held->children().front();
        top.reset();
        EXPECT_EQ(held->parentNode(), nullptr);
        EXPECT_EQ(below->parentNode(), held.get());
        below.reset();
        held.reset();
    });
}

TEST_F(Searching, AncestorFirstLinesNameThePathWithoutTheRoots) {
    m_document.userDidModify(*groceries, "Groceries\nfor the week");
    EXPECT_EQ(ancestorFirstLines(*pie), std::vector<std::string_view>{"Groceries"});
}

} // namespace
} // namespace quillery
