#include "document/SearchIndex.h"

#include "DocumentFixture.h"
#include "document/TextFolding.h"

#include <algorithm>
#include <functional>

namespace quillery {
namespace {

using testing_support::DocumentFixture;
using Texts = std::vector<std::string>;

// Under the root: "Groceries" (apple pie, pear) and "Garden" (apple tree). Results are listed by
// text, deleted notes marked with "~".
class Searching : public DocumentFixture {
public:
    Searching() {
        groceries = addNote(m_document.rootNode(), "Groceries");
        pie = addNote(groceries, "apple pie");
        pear = addNote(groceries, "pear");
        garden = addNote(m_document.rootNode(), "Garden");
        tree = addNote(garden, "apple tree");
        m_index = std::make_unique<SearchIndex>(m_document);
        m_index->waitUntilReady();
    }

    static Texts texts(SearchIndex& index, std::string_view query, bool deleted) {
        Texts result;
        for (const SearchHit& hit : index.find(query, deleted).hits)
            result.push_back((hit.deleted ? "~" : "") + hit.node->text());
        return result;
    }
    Texts found(std::string_view query, bool deleted = false) {
        return texts(*m_index, query, deleted);
    }
    // What an index built from scratch finds now.
    Texts foundAfresh(std::string_view query, bool deleted = false) {
        SearchIndex fresh(m_document);
        fresh.waitUntilReady();
        return texts(fresh, query, deleted);
    }
    Document& document() { return m_document; }
    // A record from another installation, as a merge applies it.
    void merge(const Identifier& identifier, PlainDictionary payload) {
        apply(identifier, std::move(payload));
    }
    void destroy(const NodePtr& node) { merge(node->identifier(), {{"destroy", true}}); }
    void add(const NodePtr& parent, std::string text, long at = -1) {
        m_document.userDidAdd(*NotebookNode::create(parent->identifier(), std::move(text)), *parent,
                              at);
    }

    NodePtr groceries, pie, pear, garden, tree;
    std::unique_ptr<SearchIndex> m_index; // made once the notes above are in place
};

struct ChangeCase {
    const char* name;
    std::function<void(Searching&)> change;
    const char* query;
    bool deleted;
    Texts expected;
};

class IndexFollowsChangesTest : public Searching,
                                public ::testing::WithParamInterface<ChangeCase> {};

TEST_P(IndexFollowsChangesTest, FindsWhatAFreshIndexFinds) {
    GetParam().change(*this);
    EXPECT_EQ(found(GetParam().query, GetParam().deleted), GetParam().expected);
    EXPECT_EQ(found(GetParam().query, GetParam().deleted),
              foundAfresh(GetParam().query, GetParam().deleted));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, IndexFollowsChangesTest,
    ::testing::Values(
        ChangeCase{"Nothing", [](Searching&) {}, "apple", false, {"apple pie", "apple tree"}},
        ChangeCase{"Edit",
                   [](Searching& s) { s.document().userDidModify(*s.pie, "Apple crumble"); },
                   "apple",
                   false,
                   {"Apple crumble", "apple tree"}},
        ChangeCase{"EditAwayTheWord",
                   [](Searching& s) { s.document().userDidModify(*s.pie, "plum cake"); },
                   "apple",
                   false,
                   {"apple tree"}},
        ChangeCase{"AddFirst",
                   [](Searching& s) { s.add(s.groceries, "apple jam", 0); },
                   "apple",
                   false,
                   {"apple jam", "apple pie", "apple tree"}},
        ChangeCase{"AddLast",
                   [](Searching& s) { s.add(s.garden, "apple juice"); },
                   "apple",
                   false,
                   {"apple pie", "apple tree", "apple juice"}},
        ChangeCase{"AddUnderALeaf",
                   [](Searching& s) { s.add(s.pie, "apple sauce"); },
                   "apple",
                   false,
                   {"apple pie", "apple sauce", "apple tree"}},
        ChangeCase{"Reorder",
                   [](Searching& s) { s.document().userDidMove(*s.pie, 2); },
                   "p",
                   false,
                   {"pear", "apple pie", "apple tree"}},
        ChangeCase{"MoveToAnotherParent",
                   [](Searching& s) { s.document().userDidMove(*s.tree, *s.groceries, 0); },
                   "apple",
                   false,
                   {"apple tree", "apple pie"}},
        ChangeCase{"MoveAParentWithItsNotes",
                   [](Searching& s) { s.document().userDidMove(*s.garden, 0); },
                   "a",
                   false,
                   {"Garden", "apple tree", "apple pie", "pear"}},
        ChangeCase{
            "Delete",
            [](Searching& s) { s.document().userDidMove(*s.pie, *s.document().deletedRootNode()); },
            "apple",
            false,
            {"apple tree"}},
        ChangeCase{"DeletedWhenAsked",
                   [](Searching& s) {
                       s.document().userDidMove(*s.groceries, *s.document().deletedRootNode());
                   },
                   "apple",
                   true,
                   {"apple tree", "~apple pie"}},
        ChangeCase{"UndoDelete",
                   [](Searching& s) {
                       s.document().userDidMove(*s.pie, *s.document().deletedRootNode());
                       s.m_undoManager.undo();
                   },
                   "apple",
                   true,
                   {"apple pie", "apple tree"}},
        ChangeCase{"UndoAndRedoEdit",
                   [](Searching& s) {
                       s.document().userDidModify(*s.tree, "oak");
                       s.m_undoManager.undo();
                       s.m_undoManager.redo();
                       s.m_undoManager.undo();
                   },
                   "apple",
                   false,
                   {"apple pie", "apple tree"}},
        ChangeCase{"DestroyAParent",
                   [](Searching& s) { s.destroy(s.groceries); },
                   "apple",
                   true,
                   {"apple tree"}},
        ChangeCase{"MergedEdit",
                   [](Searching& s) {
                       s.merge(s.tree->identifier(), {{"text", "plum tree"}});
                   },
                   "tree",
                   false,
                   {"plum tree"}},
        ChangeCase{"MergedNote",
                   [](Searching& s) {
                       s.merge(Identifier::makeRandom(),
                               {{"text", "apple cider"}, {"parent", s.garden->identifier()}});
                   },
                   "apple",
                   false,
                   {"apple pie", "apple tree", "apple cider"}},
        ChangeCase{"WebAddress",
                   [](Searching& s) {
                       s.merge(Identifier::makeRandom(), {{"text", "Reading"},
                                                          {"url", "https://example.org/Pears"},
                                                          {"parent", s.garden->identifier()}});
                   },
                   "example pears",
                   false,
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
    EXPECT_EQ(found("apple"), foundAfresh("apple"));
    EXPECT_EQ(found("apple").front(), "apple 99");
}

TEST_F(Searching, EditsWhileBuildingAreFound) {
    SearchIndex index(m_document);
    m_document.userDidModify(*pear, "pear tart");
    index.waitUntilReady();
    EXPECT_EQ(texts(index, "tart", false), Texts{"pear tart"});
}

TEST_F(Searching, NotesAddedWhileBuildingAreFound) {
    SearchIndex index(m_document);
    add(garden, "apple seed");
    index.waitUntilReady();
    EXPECT_EQ(texts(index, "seed", false), Texts{"apple seed"});
}

TEST_F(Searching, AVeryDeepTreeNeedsNoDeepStack) {
    NodePtr parent = garden;
    for (int i = 0; i < 100'000; ++i)
        parent = addNote(parent, i % 1000 ? "step" : "milestone");
    addNote(parent, "bottom");
    SearchIndex index(m_document);
    index.waitUntilReady();
    m_document.userDidMove(*garden, 0);
    EXPECT_EQ(texts(index, "bottom", false), Texts{"bottom"});
    EXPECT_EQ(index.find("milestone", false).total, 100u);
}

TEST(AncestorFirstLines, NamesThePathWithoutTheRoots) {
    InMemoryPreferences preferences;
    Document document(preferences);
    auto top = NotebookNode::create(document.rootNode()->identifier(), "Top\nmore");
    document.userDidAdd(*top, *document.rootNode(), -1);
    NodePtr added = document.rootNode()->children().front();
    auto child = NotebookNode::create(added->identifier(), "child");
    document.userDidAdd(*child, *added, -1);
    EXPECT_EQ(ancestorFirstLines(*added->children().front()), std::vector<std::string_view>{"Top"});
}

} // namespace
} // namespace quillery
