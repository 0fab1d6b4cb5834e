#include "columns/AddNoteButton.h"

#include "QtPrinters.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace quillery {
namespace {

class AddNoteButtonTest : public ::testing::Test {
protected:
    void SetUp() override {
        button.setTitle(QStringLiteral("Add Note"));
        button.resize(200, 40);
        button.show();
        button.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&button));
    }

    void drag(QPoint to) {
        QMouseEvent move(QEvent::MouseMove, QPointF(to), button.mapToGlobal(QPointF(to)),
                         Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&button, &move);
    }

    QColor background() const { return button.look().background; }

    AddNoteButton button;
    const AddNoteButtonColors colors = AddNoteButtonColors::forPalette(button.palette());
    QSignalSpy clicks{&button, &AddNoteButton::clicked};
    const QPoint inside{20, 20};
    const QPoint outside{500, 20};
};

// A press dragged out and back in clicks once and shows where it is; released outside, or on a
// disabled button, it clicks nothing.
TEST_F(AddNoteButtonTest, ClicksOnAReleaseOverItOfAPressThatStartedOnIt) {
    button.clearFocus();
    drag(inside);
    EXPECT_EQ(background(), colors.hover);
    QTest::mousePress(&button, Qt::LeftButton, {}, inside);
    EXPECT_EQ(background(), colors.pressed);
    drag(outside);
    EXPECT_EQ(background(), colors.normalBorder);
    drag(inside);
    EXPECT_EQ(background(), colors.pressed);
    QTest::mouseRelease(&button, Qt::LeftButton, {}, inside);
    EXPECT_EQ(clicks.count(), 1);

    QTest::mousePress(&button, Qt::LeftButton, {}, inside);
    drag(outside);
    QTest::mouseRelease(&button, Qt::LeftButton, {}, outside);
    EXPECT_FALSE(button.state().mouseDown);
    button.setEnabled(false);
    QTest::mouseClick(&button, Qt::LeftButton, {}, inside);
    EXPECT_EQ(clicks.count(), 1);
}

// Space and Return are pressed through the column; other keys, the keypad's Enter too, go on.
TEST_F(AddNoteButtonTest, KeysOtherThanSpaceAndReturnGoOn) {
    button.setFocus();
    QTest::keyClick(&button, Qt::Key_Enter, Qt::KeypadModifier);
    QTest::keyClick(&button, Qt::Key_A);
    EXPECT_EQ(clicks.count(), 0);
}

} // namespace
} // namespace quillery
