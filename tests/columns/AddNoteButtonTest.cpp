#include "columns/AddNoteButton.h"

#include "QtPrinters.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace quillery {
namespace {

struct LookCase {
    const char* name;
    AddNoteButtonState state;
    QColor AddNoteButtonColors::*background;
    QColor AddNoteButtonColors::*border; // null: transparent
    QColor AddNoteButtonColors::*title;

    friend void PrintTo(const LookCase& c, std::ostream* out) { *out << c.name; }
};

class ButtonColourTable : public ::testing::TestWithParam<LookCase> {};

TEST_P(ButtonColourTable, GivesTheColoursOfItsRow) {
    const LookCase& row = GetParam();
    const AddNoteButtonColors colors = AddNoteButtonColors::standard();
    const AddNoteButtonLook look = addNoteButtonLook(row.state, colors);
    EXPECT_EQ(look.background, colors.*row.background);
    EXPECT_EQ(look.border, row.border ? colors.*row.border : QColor(Qt::transparent));
    EXPECT_EQ(look.title, colors.*row.title);
}

using C = AddNoteButtonColors;
INSTANTIATE_TEST_SUITE_P(
    Looks, ButtonColourTable,
    ::testing::Values(
        LookCase{"Disabled", {false, false, false, false}, &C::normal, &C::disabled, &C::disabled},
        LookCase{"DisabledWhateverElse",
                 {false, true, true, true},
                 &C::normal,
                 &C::disabled,
                 &C::disabled},
        LookCase{"Hover", {true, false, true, false}, &C::mouseOver, nullptr, &C::mouseOverText},
        LookCase{"Focus", {true, false, false, true}, &C::mouseOver, nullptr, &C::mouseOverText},
        LookCase{"Rest", {true, false, false, false}, &C::normal, &C::normalBorder, &C::normalText},
        LookCase{
            "PressedInside", {true, true, true, false}, &C::mouseClick, nullptr, &C::mouseOverText},
        LookCase{"PressedOutside",
                 {true, true, false, true},
                 &C::normalBorder,
                 &C::normalBorder,
                 &C::mouseDownText}),
    [](const ::testing::TestParamInfo<LookCase>& row) { return std::string(row.param.name); });

TEST(ButtonColours, AreTheDesignsOwn) {
    const AddNoteButtonColors colors = AddNoteButtonColors::standard();
    EXPECT_EQ(colors.normal.alpha(), 0);
    EXPECT_NEAR(colors.mouseOver.redF(), 0.8, 0.01);
    EXPECT_NEAR(colors.mouseOver.alphaF(), 0.64, 0.01);
    EXPECT_NEAR(colors.mouseClick.redF(), 0.9, 0.01);
    EXPECT_NEAR(colors.disabled.alphaF(), 0.3, 0.01);
    EXPECT_NEAR(colors.normalText.redF(), 2.0 / 3.0, 0.01);
    EXPECT_EQ(colors.mouseOverText, QColor(Qt::white));
}

class ButtonInput : public ::testing::Test {
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

    AddNoteButton button;
    QSignalSpy presses{&button, &AddNoteButton::clicked};
    const QPoint inside{20, 20};
    const QPoint outside{500, 20};
};

TEST_F(ButtonInput, PressDragOutAndBackInPressesOnce) {
    const AddNoteButtonColors colors = AddNoteButtonColors::forPalette(button.palette());
    QTest::mousePress(&button, Qt::LeftButton, {}, inside);
    EXPECT_EQ(button.look().background, colors.mouseClick);
    drag(outside);
    EXPECT_EQ(button.look().background, colors.normalBorder);
    drag(inside);
    EXPECT_EQ(button.look().background, colors.mouseClick);
    QTest::mouseRelease(&button, Qt::LeftButton, {}, inside);
    EXPECT_EQ(presses.count(), 1);
}

TEST_F(ButtonInput, ReleasingOutsidePressesNothing) {
    QTest::mousePress(&button, Qt::LeftButton, {}, inside);
    drag(outside);
    QTest::mouseRelease(&button, Qt::LeftButton, {}, outside);
    EXPECT_EQ(presses.count(), 0);
    EXPECT_FALSE(button.state().mouseDown);
    EXPECT_FALSE(button.state().mouseInBounds);
}

TEST_F(ButtonInput, ADisabledButtonIgnoresClicks) {
    button.setEnabled(false);
    QTest::mouseClick(&button, Qt::LeftButton, {}, inside);
    EXPECT_EQ(presses.count(), 0);
    EXPECT_EQ(button.look().title, AddNoteButtonColors::standard().disabled);
}

TEST_F(ButtonInput, SpaceAndReturnPressAndOtherKeysGoOn) {
    button.setFocus();
    ASSERT_TRUE(button.hasFocus());
    EXPECT_EQ(button.look().background, AddNoteButtonColors::standard().mouseOver);
    QTest::keyClick(&button, Qt::Key_Space);
    QTest::keyClick(&button, Qt::Key_Return);
    QTest::keyClick(&button, Qt::Key_A);
    QTest::keyClick(&button, Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(presses.count(), 2);
}

TEST_F(ButtonInput, HasAnAccessibleName) {
    EXPECT_EQ(button.accessibleName(), QStringLiteral("Add Note"));
    EXPECT_EQ(button.focusPolicy(), Qt::StrongFocus);
}

} // namespace
} // namespace quillery
