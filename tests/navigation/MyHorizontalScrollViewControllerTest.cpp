#include "navigation/MyHorizontalScrollViewController.h"

#include "columns/CustomTableView.h"
#include "columns/ListViewController.h"
#include "navigation/MySplitViewController.h"
#include "navigation/NavigationFixture.h"

#include <QScrollBar>
#include <QTest>

namespace quillery {
namespace {

class MyHorizontalScrollViewControllerTest : public NavigationFixture {
protected:
    MyHorizontalScrollViewControllerTest()
        : host(&document)
        , split(*host.splitViewController()) {
        host.resize(split.columnWidth() * 2, 400);
        host.show();
        // Four columns, wider than the two the host shows.
        split.column(0)->selectRow(0);
        split.column(1)->selectRow(1);
        split.column(2)->selectRow(0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }

    MyHorizontalScrollViewController host;
    MySplitViewController& split;
};

TEST_F(MyHorizontalScrollViewControllerTest, ARequestForTheFirstColumnScrollsToTheLeftEnd) {
    host.horizontalScrollBar()->setValue(host.horizontalScrollBar()->maximum());
    host.scrollTo(split.items()[0]->geometry());
    EXPECT_EQ(host.horizontalScrollBar()->value(), 0);
}

TEST_F(MyHorizontalScrollViewControllerTest, ARequestPutsTheColumnAtTheLeftEdge) {
    host.scrollTo(split.items()[1]->geometry());
    EXPECT_EQ(host.horizontalScrollBar()->value(), split.items()[1]->x());
}

TEST_F(MyHorizontalScrollViewControllerTest, ARequestForTheLastColumnStopsAtTheRowsEnd) {
    QScrollBar* bar = host.horizontalScrollBar();
    ASSERT_GT(bar->maximum(), 0);
    QWidget* last = split.items().back();

    host.scrollTo(last->geometry());

    EXPECT_EQ(bar->value(), bar->maximum());
    EXPECT_LT(bar->value(), last->x());
    EXPECT_EQ(last->geometry().right() - bar->value(), host.viewport()->width() - 1);
}

TEST_F(MyHorizontalScrollViewControllerTest, AColumnAddedOnThisTurnCanBeScrolledTo) {
    split.column(3)->tableView()->clearSelection();
    split.column(0)->selectRow(0);
    split.column(1)->selectRow(1);
    split.column(2)->selectRow(0);
    host.scrollTo(split.items()[2]->geometry());
    EXPECT_EQ(host.horizontalScrollBar()->value(), split.items()[2]->x());
}

TEST_F(MyHorizontalScrollViewControllerTest, TheRowFollowsTheVisibleHeightAndNeverScrollsDown) {
    host.resize(host.width(), 300);
    EXPECT_TRUE(QTest::qWaitFor([&] { return split.height() == host.viewport()->height(); }));
    host.resize(host.width(), 520);
    EXPECT_TRUE(QTest::qWaitFor([&] { return split.height() == host.viewport()->height(); }));
    EXPECT_EQ(host.verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_EQ(split.items()[0]->height(), split.height());
}

} // namespace
} // namespace quillery
