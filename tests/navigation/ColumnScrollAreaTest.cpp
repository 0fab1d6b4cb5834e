#include "navigation/ColumnScrollArea.h"

#include "NavigationFixture.h"
#include "columns/NoteListView.h"

#include <QScrollBar>

namespace quillery {
namespace {

// Four columns in an area two columns wide.
class ColumnScrollAreaTest : public NavigationFixture {
protected:
    ColumnScrollAreaTest() {
        show({row.columnWidth() * 2, 400});
        openFourColumns();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }

    QScrollBar& bar() const { return *area.horizontalScrollBar(); }
};

TEST_F(ColumnScrollAreaTest, AnItemAskedForComesToTheLeftEdgeAsFarAsTheRowReaches) {
    bar().setValue(bar().maximum());
    area.scrollTo(row.items()[0]->geometry());
    EXPECT_EQ(bar().value(), 0);
    area.scrollTo(row.items()[1]->geometry());
    EXPECT_EQ(bar().value(), row.items()[1]->x());
    QWidget* last = row.items().back();
    area.scrollTo(last->geometry());
    ASSERT_GT(bar().maximum(), 0);
    EXPECT_EQ(bar().value(), bar().maximum());
    EXPECT_EQ(last->geometry().right() - bar().value(), area.viewport()->width() - 1);

    // Columns added on this turn, before the row was laid out again.
    row.column(0)->listView()->clearSelection();
    openFourColumns();
    area.scrollTo(row.items()[2]->geometry());
    EXPECT_EQ(bar().value(), row.items()[2]->x());
}

TEST_F(ColumnScrollAreaTest, TheRowFollowsTheVisibleHeightAndNeverScrollsDown) {
    for (const int height : {300, 520}) {
        area.resize(area.width(), height);
        EXPECT_TRUE(QTest::qWaitFor([&] { return row.height() == area.viewport()->height(); }));
    }
    EXPECT_EQ(row.items()[0]->height(), row.height());
}

} // namespace
} // namespace quillery
