#include "navigation/ColumnSlots.h"

#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace quillery {
namespace {

// A column or a panel as the fake host knows it.
struct FakeItem {
    std::string name;
    bool column = true;
    bool enabled = true;
};

// Carries out the rules' steps on FakeItems and writes each step to a log. Steps asked for
// "later" wait until the script says "turn".
class FakeHost : public ColumnSlots<FakeItem*>::Host {
public:
    FakeItem* makeColumn(const NodePtr& node, int depth) override {
        m_items.push_back({node->text() + std::to_string(depth)});
        return &m_items.back();
    }
    bool isColumn(FakeItem* const& item) const override { return item->column; }
    void appendItem(FakeItem* const& item) override { write("show", item); }
    void removeItem(FakeItem* const& item, bool closing) override {
        write(closing ? "close" : "aside", item);
    }
    void setColumnEnabled(FakeItem* const& item, bool enabled) override { item->enabled = enabled; }
    void focusColumn(FakeItem* const& item) override { write("focus", item); }
    void scrollToItem(FakeItem* const& item) override { write("scroll", item); }
    void later(std::function<void()> step) override { m_pending.push_back(std::move(step)); }

    FakeItem* makePanel() {
        m_items.push_back({"panel", false});
        return &m_items.back();
    }
    void runLater() {
        auto pending = std::move(m_pending);
        m_pending.clear();
        for (auto& step : pending)
            step();
    }

    std::string log;

private:
    void write(const char* step, const FakeItem* item) {
        log += (log.empty() ? "" : ", ") + std::string(step) + " " + item->name;
    }

    std::deque<FakeItem> m_items;
    std::vector<std::function<void()>> m_pending;
};

// Runs a script of the row's events on columns root0 a1 b2 c3 (the path to c opened), then
// answers the row's items (disabled ones in brackets) and the host's log of the script.
std::pair<std::string, std::string> run(const std::string& script) {
    FakeHost host;
    ColumnSlots<FakeItem*> slots(host);
    slots.loadRootNode(NotebookNode::create(Identifier("root"), "root"));
    for (const char* text : {"a", "b", "c"})
        slots.select(slots.itemCount() - 1, NotebookNode::create(Identifier("root"), text));
    host.log.clear();
    std::istringstream steps(script);
    for (std::string step; steps >> step;) {
        int depth = 0;
        if (step == "select") {
            std::string note;
            steps >> depth >> note;
            slots.select(depth, NotebookNode::create(Identifier("root"), note));
        } else if (step == "clear" && steps >> depth) {
            slots.clearSelection(depth);
        } else if (step == "left" && steps >> depth) {
            slots.moveLeft(depth);
        } else if (step == "right" && steps >> depth) {
            slots.moveRight(depth);
        } else if (step == "focus" && steps >> depth) {
            slots.focus(depth);
        } else if (step == "panel" && steps >> depth) {
            if (!slots.showPanel(host.makePanel(), depth))
                host.log += host.log.empty() ? "refused" : ", refused";
        } else if (step == "close") {
            slots.closePanel();
        } else if (step == "turn") {
            host.runLater();
        } else if (step == "root") {
            slots.loadRootNode(NotebookNode::create(Identifier("root"), "other"));
        }
    }
    std::string items;
    for (FakeItem* item : slots.items())
        items += (items.empty() ? "" : " ") + (item->enabled ? item->name : "[" + item->name + "]");
    return {items, host.log};
}

struct Script {
    const char* name;
    const char* steps;
    const char* items;
    const char* log;
};

class ColumnSlotsTest : public ::testing::TestWithParam<Script> {};

TEST_P(ColumnSlotsTest, FollowTheRulesOfTheRow) {
    const auto [items, log] = run(GetParam().steps);
    EXPECT_EQ(items, GetParam().items);
    EXPECT_EQ(log, GetParam().log);
}

const Script kScripts[] = {
    // Browsing: a selection opens the note's column and closes those right of it.
    {"TheRootLoadsOnce", "root", "root0 a1 b2 c3", ""},
    {"SelectingFurtherLeft", "select 0 d", "root0 d1", "close a1, close b2, close c3, show d1"},
    {"SelectingInTheLastColumn", "select 3 d", "root0 a1 b2 c3 d4", "show d4"},
    {"SelectingTheSameNoteAgain", "select 2 c", "root0 a1 b2 c3", "close c3, show c3"},
    {"ClearingASelection", "clear 1", "root0 a1", "close b2, close c3"},
    // The focus moves between neighbouring columns, never past the ends or onto a panel.
    {"FocusStopsAtTheEnds", "left 0 right 3 right 1 left 1", "root0 a1 b2 c3",
     "focus b2, focus root0"},
    {"FocusSkipsAPanel", "panel 2 right 1 focus 2 focus 7", "[root0] [a1] panel",
     "aside b2, aside c3, show panel"},
    // A panel stands in for the columns right of it and disables those left of it.
    {"APanelIsScrolledToOnTheNextTurn", "panel 2 turn", "[root0] [a1] panel",
     "aside b2, aside c3, show panel, scroll panel"},
    {"ClosingBringsTheColumnsBackAndFocusesTheOpener", "panel 2 turn close turn", "root0 a1 b2 c3",
     "aside b2, aside c3, show panel, scroll panel, close panel, show b2, show c3, scroll a1, "
     "focus a1"},
    {"ASecondPanelIsRefused", "panel 2 panel 1", "[root0] [a1] panel",
     "aside b2, aside c3, show panel, refused"},
    {"SelectionsWaitWhileAPanelIsShown", "panel 2 select 0 d clear 0", "[root0] [a1] panel",
     "aside b2, aside c3, show panel"},
    {"APanelBeyondTheRowGoesAtItsEnd", "panel 9", "[root0] [a1] [b2] [c3] panel", "show panel"},
    {"ClosingWithoutAPanelDoesNothing", "close turn", "root0 a1 b2 c3", ""},
    // Steps queued for the next turn look at the row as it is when they run.
    {"APanelGoneIsNotScrolledTo", "panel 2 close turn", "root0 a1 b2 c3",
     "aside b2, aside c3, show panel, close panel, show b2, show c3, scroll a1, focus a1"},
    {"AFocusIsDroppedForANewPanel", "panel 2 close panel 1 turn", "[root0] panel",
     "aside b2, aside c3, show panel, close panel, show b2, show c3, aside a1, aside b2, "
     "aside c3, show panel, scroll panel"},
};

INSTANTIATE_TEST_SUITE_P(Scripts, ColumnSlotsTest, ::testing::ValuesIn(kScripts),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

} // namespace
} // namespace quillery
