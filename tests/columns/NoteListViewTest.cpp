#include "columns/NoteListView.h"

#include "QtPrinters.h"

#include <QApplication>
#include <QScrollBar>
#include <QStringListModel>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace quillery {
namespace {

struct Motion {
    QPoint delta;
    bool sideways;

    friend void PrintTo(const Motion& c, std::ostream* out) {
        *out << "(" << c.delta.x() << ", " << c.delta.y() << ")";
    }
};

class SidewaysMotion : public ::testing::TestWithParam<Motion> {};

TEST_P(SidewaysMotion, IsMostlyHorizontalAndNotZero) {
    EXPECT_EQ(NoteListView::isSidewaysMotion(GetParam().delta), GetParam().sideways);
}

INSTANTIATE_TEST_SUITE_P(Deltas, SidewaysMotion,
                         ::testing::Values(Motion{{5, 1}, true}, Motion{{-5, 1}, true},
                                           Motion{{5, 5}, false}, Motion{{0, 3}, false},
                                           Motion{{0, 0}, false}, Motion{{1, -4}, false}));

// Qt hands an ignored wheel event on to the parent widgets (up to the row's scroll area) only
// when it came from the window system, so the list's own answer is what is tested here.
class ExposedScrollView : public NoteListView {
public:
    using NoteListView::wheelEvent;
};

class WheelInColumnRow : public ::testing::Test {
protected:
    void SetUp() override {
        QStringList lines;
        for (int i = 0; i < 200; ++i)
            lines << QString::number(i);
        model.setStringList(lines);
        list.setModel(&model);
        list.resize(200, 150);
        list.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&list));
    }

    bool wheel(QPoint pixels) {
        const QPointF at(20, 20);
        QWheelEvent event(at, list.viewport()->mapToGlobal(at), pixels, pixels * 4, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        list.wheelEvent(&event);
        return event.isAccepted();
    }

    QStringListModel model;
    ExposedScrollView list;
};

TEST_F(WheelInColumnRow, SidewaysMotionIsLeftForTheRow) {
    EXPECT_FALSE(wheel({-30, -2}));
    EXPECT_EQ(list.verticalScrollBar()->value(), 0);
}

TEST_F(WheelInColumnRow, OtherMotionScrollsTheList) {
    EXPECT_TRUE(wheel({0, -30}));
    EXPECT_GT(list.verticalScrollBar()->value(), 0);
}

} // namespace
} // namespace quillery
