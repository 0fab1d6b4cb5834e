#include "navigation/ColumnSlots.h"

#include <deque>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillery {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A column or a panel as the fake host knows it.
struct FakeItem {
    std::string name;
    bool column = true;
    int depth = 0;
    bool enabled = true;
    bool shown = false;
    bool closed = false;
};

// Carries out the model's steps on FakeItems and writes each step to a log.
class FakeHost : public ColumnSlots<FakeItem*>::Host {
public:
    FakeItem* makeColumn(const NodePtr& node, int depth) override {
        m_items.push_back({node ? node->text() : std::string("-"), true, depth});
        return &m_items.back();
    }
    bool isColumn(FakeItem* const& item) const override { return item->column; }
    void appendItem(FakeItem* const& item) override {
        item->shown = true;
        log.push_back("show " + item->name);
    }
    void removeItem(FakeItem* const& item, bool closing) override {
        item->shown = false;
        item->closed = closing;
        log.push_back((closing ? "close " : "aside ") + item->name);
    }
    void setColumnEnabled(FakeItem* const& item, bool enabled) override { item->enabled = enabled; }
    void focusColumn(FakeItem* const& item) override { log.push_back("focus " + item->name); }
    void scrollToItem(FakeItem* const& item) override { log.push_back("scroll " + item->name); }
    void later(std::function<void()> step) override { m_pending.push_back(std::move(step)); }

    FakeItem* makePanel() {
        m_items.push_back({"panel", false});
        return &m_items.back();
    }
    // The steps queued for the next turn of the event loop, run in order.
    void runLater() {
        auto pending = std::move(m_pending);
        m_pending.clear();
        for (auto& step : pending) {
            step();
        }
    }

    std::vector<std::string> log;

private:
    std::deque<FakeItem> m_items;
    std::vector<std::function<void()>> m_pending;
};

NodePtr note(const std::string& text) {
    return NotebookNode::create(Identifier("root"), text);
}

class ColumnSlotsTest : public ::testing::Test {
protected:
    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (FakeItem* item : slots.items()) {
            result.push_back(item->name);
        }
        return result;
    }

    // Columns 0 to 3: root, a, b, c.
    void openFourColumns() {
        slots.loadRootNode(note("root"));
        slots.select(0, note("a"));
        slots.select(1, note("b"));
        slots.select(2, note("c"));
        host.log.clear();
    }

    FakeHost host;
    ColumnSlots<FakeItem*> slots{host};
};

// Browsing: columns open and close as the selection moves.

TEST_F(ColumnSlotsTest, LoadingTheRootMakesOneColumnOnceOnly) {
    slots.loadRootNode(note("root"));
    slots.loadRootNode(note("other"));

    EXPECT_THAT(names(), ElementsAre("root"));
    EXPECT_EQ(slots.items()[0]->depth, 0);
}

TEST_F(ColumnSlotsTest, SelectingInTheFirstColumnReplacesEveryColumnRightOfIt) {
    openFourColumns();

    slots.select(0, note("d"));

    EXPECT_THAT(names(), ElementsAre("root", "d"));
    EXPECT_EQ(slots.items()[1]->depth, 1);
    EXPECT_THAT(host.log, ElementsAre("close a", "close b", "close c", "show d"));
}

TEST_F(ColumnSlotsTest, SelectingInTheLastColumnAppendsOne) {
    openFourColumns();
    slots.select(3, note("d"));
    EXPECT_THAT(names(), ElementsAre("root", "a", "b", "c", "d"));
    EXPECT_EQ(slots.items()[4]->depth, 4);
}

TEST_F(ColumnSlotsTest, SelectingTheSameNoteAgainMakesANewColumn) {
    openFourColumns();
    FakeItem* before = slots.items()[3];
    slots.select(2, note("c"));
    EXPECT_NE(slots.items()[3], before);
    EXPECT_TRUE(before->closed);
}

TEST_F(ColumnSlotsTest, ClearingTheSelectionClosesTheColumnsRightOfIt) {
    openFourColumns();
    slots.clearSelection(1);
    EXPECT_THAT(names(), ElementsAre("root", "a"));
}

// Focus moves between neighbouring columns, never past the ends or onto a panel.

TEST_F(ColumnSlotsTest, MovingFocusStopsAtBothEnds) {
    openFourColumns();
    slots.moveLeft(0);
    slots.moveRight(3);
    EXPECT_THAT(host.log, IsEmpty());

    slots.moveRight(1);
    slots.moveLeft(1);
    EXPECT_THAT(host.log, ElementsAre("focus b", "focus root"));
}

TEST_F(ColumnSlotsTest, MovingRightOntoAPanelDoesNothing) {
    openFourColumns();
    slots.showPanel(host.makePanel(), 2);
    host.log.clear();
    slots.moveRight(1);
    slots.focus(7);
    EXPECT_THAT(host.log, IsEmpty());
}

// A panel stands in for the columns right of it and disables those left of it.

TEST_F(ColumnSlotsTest, PresentingPutsAsideTheColumnsRightOfThePanel) {
    openFourColumns();
    FakeItem* panel = host.makePanel();

    ASSERT_TRUE(slots.showPanel(panel, 2));

    EXPECT_THAT(names(), ElementsAre("root", "a", "panel"));
    EXPECT_FALSE(slots.items()[0]->enabled);
    EXPECT_FALSE(slots.items()[1]->enabled);
    EXPECT_THAT(host.log, ElementsAre("aside b", "aside c", "show panel"));

    host.log.clear();
    host.runLater();
    EXPECT_THAT(host.log, ElementsAre("scroll panel"));
}

TEST_F(ColumnSlotsTest, DismissingRestoresTheColumnsAndFocusesTheOneThatOpenedThePanel) {
    openFourColumns();
    slots.showPanel(host.makePanel(), 2);
    host.runLater();
    host.log.clear();

    slots.closePanel();

    EXPECT_THAT(names(), ElementsAre("root", "a", "b", "c"));
    EXPECT_TRUE(slots.items()[0]->enabled);
    EXPECT_TRUE(slots.items()[1]->enabled);
    EXPECT_FALSE(slots.panel().has_value());
    EXPECT_THAT(host.log, ElementsAre("close panel", "show b", "show c"));

    host.log.clear();
    host.runLater();
    EXPECT_THAT(host.log, ElementsAre("scroll a", "focus a"));
}

TEST_F(ColumnSlotsTest, ASecondPanelIsRefusedAndChangesNothing) {
    openFourColumns();
    slots.showPanel(host.makePanel(), 2);
    host.log.clear();

    EXPECT_FALSE(slots.showPanel(host.makePanel(), 1));
    EXPECT_THAT(names(), ElementsAre("root", "a", "panel"));
    EXPECT_THAT(host.log, IsEmpty());
}

TEST_F(ColumnSlotsTest, SelectionChangesWhileAPanelIsShownAreIgnored) {
    openFourColumns();
    slots.showPanel(host.makePanel(), 2);
    slots.select(0, note("d"));
    slots.clearSelection(0);
    EXPECT_THAT(names(), ElementsAre("root", "a", "panel"));
}

TEST_F(ColumnSlotsTest, APresentDepthBeyondTheRowIsClampedToItsEnd) {
    openFourColumns();
    slots.showPanel(host.makePanel(), 9);
    EXPECT_THAT(names(), ElementsAre("root", "a", "b", "c", "panel"));
}

TEST_F(ColumnSlotsTest, DismissingWithoutAPanelDoesNothing) {
    openFourColumns();
    slots.closePanel();
    host.runLater();
    EXPECT_THAT(names(), ElementsAre("root", "a", "b", "c"));
    EXPECT_THAT(host.log, IsEmpty());
}

// Queued steps look at the row as it is when they run.

TEST_F(ColumnSlotsTest, APanelGoneBeforeItsScrollStepRanIsNotScrolledTo) {
    openFourColumns();
    slots.showPanel(host.makePanel(), 2);
    slots.closePanel();
    host.log.clear();

    host.runLater();

    EXPECT_THAT(host.log, ElementsAre("scroll a", "focus a"));
}

TEST_F(ColumnSlotsTest, AFocusStepIsDroppedWhenAnotherPanelOpenedMeanwhile) {
    openFourColumns();
    slots.showPanel(host.makePanel(), 2);
    slots.closePanel();
    slots.showPanel(host.makePanel(), 1);
    host.log.clear();

    host.runLater();

    EXPECT_THAT(host.log, ElementsAre("scroll panel"));
}

} // namespace
} // namespace quillery
