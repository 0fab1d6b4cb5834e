#include "columns/NodeRowDelegate.h"

#include "ColumnTestSupport.h"
#include "columns/ColumnStyle.h"
#include "columns/StyledTextLayout.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cmath>

namespace quillery::testing {
namespace {

class RowHeights : public ColumnFixture {
protected:
    RowHeights() { parent = add(document.rootNode(), "parent"); }

    int shownHeight(int row) const {
        QApplication::processEvents();
        return column->listView()->visualRect(column->listView()->model()->index(row, 0)).height();
    }
    NodeRowDelegate& rows() const {
        return *qobject_cast<NodeRowDelegate*>(column->listView()->itemDelegate());
    }
    // Lets the list lay out and paint for a few turns.
    static void settle() {
        for (int turn = 0; turn < 10; ++turn)
            QApplication::processEvents(QEventLoop::AllEvents, 5);
    }

    NodePtr parent;
};

TEST_F(RowHeights, APictureFillsTheColumnWidthAtItsAspectRatioOrThePlaceholders) {
    const NodePtr known = addPicture(parent, {400, 200});
    document.userDidAdd(*NotebookNode::create(parent->identifier(), "", Identifier::makeRandom()),
                        *parent, 1);
    open(parent);
    EXPECT_EQ(shownHeight(0), column->listView()->viewport()->width() / 2);
    rows().setColumnWidth(300);
    EXPECT_EQ(rows().rowHeight(*known), 150);
    EXPECT_EQ(rows().rowHeight(*parent->children()[1]), 150); // the placeholder is 40 × 20
}

TEST_F(RowHeights, TextWrapsWhenNarrowAndHugeTextIsCutAtTheMeasuringBox) {
    const NodePtr sentence =
        add(parent, "A sentence long enough that a narrow column must wrap it onto several lines");
    std::string lines;
    for (int line = 0; line < 20000; ++line)
        lines += "line\n";
    const NodePtr huge = add(parent, lines);
    open(parent);
    rows().setColumnWidth(1000);
    const int wide = rows().rowHeight(*sentence);
    rows().setColumnWidth(120);
    EXPECT_GT(rows().rowHeight(*sentence), wide);
    EXPECT_LE(rows().rowHeight(*huge),
              static_cast<int>(StyledTextLayout::kMaxHeight) + NodeRowDelegate::kVerticalSpace);
}

TEST_F(RowHeights, ALongColumnMeasuresOnlyTheRowsItShows) {
    auto& children = parent->children();
    for (int i = 0; i < 5000; ++i)
        children.push_back(NotebookNode::create(parent->identifier(), "note " + std::to_string(i)));
    open(parent);
    // Painting measures the rows on screen.
    QElapsedTimer waited;
    waited.start();
    while (rows().measuredRowCount() == 0 && waited.elapsed() < 5000)
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    settle();
    EXPECT_GT(rows().measuredRowCount(), 0u);
    EXPECT_LT(rows().measuredRowCount(), 200u);
    EXPECT_EQ(shownHeight(0), rows().rowHeight(*children[0]));

    // Jumping to the end measures the rows shown there, not those scrolled past.
    column->listView()->scrollToBottom();
    settle();
    EXPECT_LT(rows().measuredRowCount(), 400u);
    EXPECT_EQ(shownHeight(4999), rows().rowHeight(*children[4999]));
}

TEST_F(RowHeights, AnEstimateIsCloseForPlainText) {
    const NodePtr note = NotebookNode::create(Identifier("root"), "one line\nand another");
    NodeRowDelegate estimating(&document);
    estimating.setColumnWidth(300);
    EXPECT_NEAR(estimating.estimatedRowHeight(*note), estimating.rowHeight(*note), 8);
}

// A dimmed column fades its rows, but the count of a row's children must stay readable: its
// number keeps at least the contrast of large text against its pill on the list's background.
struct CountPalette {
    const char* name;
    QColor base;
    QColor text;
    bool dimmed;
};

double luminance(const QColor& color) {
    const auto channel = [](float value) {
        return value <= 0.04045f ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(color.redF()) + 0.7152 * channel(color.greenF()) +
           0.0722 * channel(color.blueF());
}

QColor over(const QColor& top, const QColor& below) {
    const float alpha = top.alphaF();
    const auto mix = [alpha](float a, float b) {
        return a * alpha + b * (1 - alpha);
    };
    return QColor::fromRgbF(mix(top.redF(), below.redF()), mix(top.greenF(), below.greenF()),
                            mix(top.blueF(), below.blueF()));
}

class ChildCountContrast : public ::testing::TestWithParam<CountPalette> {};

TEST_P(ChildCountContrast, TheCountStandsOutFromItsPill) {
    const CountPalette& shown = GetParam();
    QPalette palette;
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive})
        palette.setColor(group, QPalette::Text, shown.text);
    // A disabled list's own text colour is already faded towards the background.
    palette.setColor(
        QPalette::Disabled, QPalette::Text,
        over(QColor(shown.text.red(), shown.text.green(), shown.text.blue(), 64), shown.base));
    palette.setColor(QPalette::Base, shown.base);
    palette.setCurrentColorGroup(shown.dimmed ? QPalette::Disabled : QPalette::Active);
    const columnstyle::ChildCountColors colors =
        columnstyle::childCountColors(palette, shown.dimmed);
    const QColor pill = over(colors.badge, shown.base);
    const QColor number = over(colors.text, pill);
    const double lighter = std::max(luminance(pill), luminance(number));
    const double darker = std::min(luminance(pill), luminance(number));
    EXPECT_GE((lighter + 0.05) / (darker + 0.05), 3.0);
}

INSTANTIATE_TEST_SUITE_P(
    LightAndDark, ChildCountContrast,
    ::testing::Values(
        CountPalette{"light", Qt::white, Qt::black, false},
        CountPalette{"lightDimmed", QColor(0xef, 0xef, 0xef), Qt::black, true},
        CountPalette{"dark", QColor(0x28, 0x28, 0x28), QColor(0xee, 0xee, 0xee), false},
        CountPalette{"darkDimmed", QColor(0x28, 0x28, 0x28), QColor(0xee, 0xee, 0xee), true}),
    [](const ::testing::TestParamInfo<CountPalette>& param) { return param.param.name; });

} // namespace
} // namespace quillery::testing
