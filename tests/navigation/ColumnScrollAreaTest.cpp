#include "navigation/ColumnScrollArea.h"

#include "columns/NoteColumn.h"
#include "columns/NoteListView.h"
#include "navigation/ColumnRow.h"
#include "navigation/NavigationFixture.h"

#include <QScrollBar>
#include <QTest>

namespace quillery {
namespace {

class ColumnScrollAreaTest : public NavigationFixture {
protected:
    ColumnScrollAreaTest()
        : host(&document)
        , split(*host.columnRow()) {
        host.resize(split.columnWidth() * 2, 400);
        host.show();
        // Four columns, wider than the two the host shows.
        split.column(0)->selectRow(0);
        split.column(1)->selectRow(1);
        split.column(2)->selectRow(0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }

    ColumnScrollArea host;
    ColumnRow& split;
};

TEST_F(ColumnScrollAreaTest, ARequestForTheFirstColumnScrollsToTheLeftEnd) {
    host.horizontalScrollBar()->setValue(host.horizontalScrollBar()->maximum());
    host.scrollTo(split.items()[0]->geometry());
    EXPECT_EQ(host.horizontalScrollBar()->value(), 0);
}

TEST_F(ColumnScrollAreaTest, ARequestPutsTheColumnAtTheLeftEdge) {
    host.scrollTo(split.items()[1]->geometry());
    EXPECT_EQ(host.horizontalScrollBar()->value(), split.items()[1]->x());
}

TEST_F(ColumnScrollAreaTest, ARequestForTheLastColumnStopsAtTheRowsEnd) {
    QScrollBar* bar = host.horizontalScrollBar();
    ASSERT_GT(bar->maximum(), 0);
    QWidget* last = split.items().back();

    host.scrollTo(last->geometry());

    EXPECT_EQ(bar->value(), bar->maximum());
    EXPECT_LT(bar->value(), last->x());
    EXPECT_EQ(last->geometry().right() - bar->value(), host.viewport()->width() - 1);
}

TEST_F(ColumnScrollAreaTest, AColumnAddedOnThisTurnCanBeScrolledTo) {
    split.column(3)->listView()->clearSelection();
    split.column(0)->selectRow(0);
    split.column(1)->selectRow(1);
    split.column(2)->selectRow(0);
    host.scrollTo(split.items()[2]->geometry());
    EXPECT_EQ(host.horizontalScrollBar()->value(), split.items()[2]->x());
}

TEST_F(ColumnScrollAreaTest, TheRowFollowsTheVisibleHeightAndNeverScrollsDown) {
    host.resize(host.width(), 300);
    EXPECT_TRUE(QTest::qWaitFor([&] { return split.height() == host.viewport()->height(); }));
    host.resize(host.width(), 520);
    EXPECT_TRUE(QTest::qWaitFor([&] { return split.height() == host.viewport()->height(); }));
    EXPECT_EQ(host.verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_EQ(split.items()[0]->height(), split.height());
}

} // namespace
} // namespace quillery
