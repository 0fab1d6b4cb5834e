#include "columns/NodeRowDelegate.h"

#include "ColumnTestSupport.h"
#include "QtPrinters.h"
#include "columns/ColumnDropHandler.h"
#include "columns/ColumnStyle.h"
#include "columns/NodeListModel.h"
#include "columns/StyledTextLayout.h"

#include <QElapsedTimer>
#include <QMimeData>

#include <algorithm>
#include <cmath>
#include <optional>

namespace quillery::testing {
namespace {

class RowHeights : public ColumnFixture {
protected:
    int shownHeight(int row) const {
        QApplication::processEvents();
        return column->listView()->visualRect(column->listView()->model()->index(row, 0)).height();
    }
    NodeRowDelegate& rows() const {
        return *qobject_cast<NodeRowDelegate*>(column->listView()->itemDelegate());
    }
};

TEST_F(RowHeights, APictureFillsTheColumnWidthAtItsAspectRatio) {
    const NodePtr parent = add(document.rootNode(), "parent");
    addPicture(parent, {400, 200});
    open(parent);
    const int width = column->listView()->viewport()->width();
    EXPECT_EQ(rows().columnWidth(), width);
    EXPECT_EQ(shownHeight(0), width / 2);
    rows().setColumnWidth(300);
    EXPECT_EQ(rows().rowHeight(*parent->children()[0]), 150);
}

TEST_F(RowHeights, AnUnknownPictureUsesThePlaceholdersShape) {
    const NodePtr parent = add(document.rootNode(), "parent");
    document.userDidAdd(*NotebookNode::create(parent->identifier(), "", Identifier::makeRandom()),
                        *parent, 0);
    open(parent);
    rows().setColumnWidth(300);
    EXPECT_EQ(rows().rowHeight(*parent->children()[0]), 150); // the placeholder is 40 × 20
}

TEST(RowHeightsWithoutPictures, APictureRowWithNoPictureAtAllIs192High) {
    InMemoryPreferences preferences;
    Document document(preferences);
    NodeRowDelegate rows(&document);
    const NodePtr picture = NotebookNode::create(Identifier("root"), "", Identifier::makeRandom());
    EXPECT_EQ(rows.rowHeight(*picture), NodeRowDelegate::kNoPictureHeight);
}

TEST_F(RowHeights, TextRowsAreTheirTextPlus24AndWrapWhenNarrow) {
    const NodePtr parent = add(document.rootNode(), "parent");
    const NodePtr note = add(parent, "A sentence long enough that a narrow column must wrap it "
                                     "onto several lines of text");
    open(parent);
    rows().setColumnWidth(1000);
    const int wide = rows().rowHeight(*note);
    EXPECT_EQ(wide, static_cast<int>(std::ceil(StyledTextLayout::measure(note->text(), 984))) +
                        NodeRowDelegate::kVerticalSpace);
    rows().setColumnWidth(120);
    EXPECT_GT(rows().rowHeight(*note), wide);
}

TEST_F(RowHeights, HugeTextIsCutAtTheMeasuringBox) {
    const NodePtr parent = add(document.rootNode(), "parent");
    std::string text;
    for (int line = 0; line < 20000; ++line)
        text += "line\n";
    const NodePtr note = add(parent, text);
    open(parent);
    EXPECT_EQ(rows().rowHeight(*note),
              static_cast<int>(StyledTextLayout::kMaxHeight) + NodeRowDelegate::kVerticalSpace);
}

TEST_F(RowHeights, ALongColumnMeasuresOnlyTheRowsItShows) {
    const NodePtr parent = NotebookNode::create(Identifier("root"), "parent");
    auto& children = parent->children();
    for (int i = 0; i < 5000; ++i)
        children.push_back(NotebookNode::create(parent->identifier(), "note " + std::to_string(i)));
    open(parent);
    // Painting measures the rows on screen.
    QElapsedTimer waited;
    waited.start();
    while (rows().measuredRowCount() == 0 && waited.elapsed() < 5000)
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    for (int turn = 0; turn < 10; ++turn)
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    EXPECT_GT(rows().measuredRowCount(), 0u);
    EXPECT_LT(rows().measuredRowCount(), 200u);
    // The rows on screen have their exact heights.
    EXPECT_EQ(shownHeight(0), rows().rowHeight(*children[0]));

    // Jumping to the end measures the rows shown there, not those scrolled past.
    column->listView()->scrollToBottom();
    for (int turn = 0; turn < 10; ++turn)
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    EXPECT_LT(rows().measuredRowCount(), 400u);
    EXPECT_EQ(shownHeight(4999), rows().rowHeight(*children[4999]));
}

TEST_F(RowHeights, AnEstimateIsCloseForPlainText) {
    const NodePtr note = NotebookNode::create(Identifier("root"), "one line\nand another");
    NodeRowDelegate rows(&document);
    rows.setColumnWidth(300);
    EXPECT_NEAR(rows.estimatedRowHeight(*note), rows.rowHeight(*note), 8);
}

// The list model answers drags and drops through the column's drop handler.
class ColumnModelDrops : public ColumnFixture {};

TEST_F(ColumnModelDrops, ANoteDroppedAboveARowMovesThere) {
    const NodePtr parent = add(document.rootNode(), "parent");
    for (const char* text : {"a", "b", "c"})
        add(parent, text);
    open(parent);
    QAbstractItemModel* model = column->listView()->model();
    std::unique_ptr<QMimeData> drag(model->mimeData({model->index(0, 0)}));
    ASSERT_NE(drag, nullptr);
    EXPECT_TRUE(drag->hasFormat(QString::fromLatin1(kNodeDragAndDropDataType)));
    EXPECT_FALSE(model->canDropMimeData(drag.get(), Qt::MoveAction, 1, 0, {})); // stays put
    EXPECT_FALSE(model->canDropMimeData(drag.get(), Qt::MoveAction, -1, -1, model->index(0, 0)));
    EXPECT_TRUE(model->canDropMimeData(drag.get(), Qt::MoveAction, 3, 0, {}));
    EXPECT_TRUE(model->dropMimeData(drag.get(), Qt::MoveAction, 3, 0, {}));
    EXPECT_EQ(texts(parent), (std::vector<std::string>{"b", "c", "a"}));
    EXPECT_EQ(model->index(2, 0).data().toString(), QStringLiteral("a"));
}

TEST_F(ColumnModelDrops, ADroppedAddressOpensItsNoteInTheEditorNextTurn) {
    const NodePtr parent = add(document.rootNode(), "parent");
    open(parent);
    QMimeData address;
    address.setUrls({QUrl(QStringLiteral("https://example.org/page"))});
    QAbstractItemModel* model = column->listView()->model();
    // Copied, never moved: the source keeps what it offered.
    EXPECT_EQ(qobject_cast<NodeListModel*>(model)->dropAction(address, -1, {}), Qt::CopyAction);
    ASSERT_TRUE(model->dropMimeData(&address, Qt::CopyAction, -1, -1, {}));
    EXPECT_EQ(delegate.editor, nullptr);
    QApplication::processEvents();
    ASSERT_NE(delegate.editor, nullptr);
    EXPECT_EQ(delegate.editor->note(), parent->children().back());
}

// A dimmed column fades its rows, but the count of a row's children must stay readable: its
// number keeps at least the contrast of large text against its pill on the list's background.
struct CountPalette {
    const char* name;
    QColor base;
    QColor text;
    bool dimmed;

    friend void PrintTo(const CountPalette& c, std::ostream* out) { *out << c.name; }
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

// The mark where a dragged note would land is drawn in the list's highlight colour, and only
// where the note may be dropped.
class DropMark : public ColumnFixture {
protected:
    static constexpr QRgb kHighlight = qRgb(255, 0, 255);

    // Drags the row over a point of the list (by way of another, when given) and counts the
    // highlight-coloured pixels shown.
    int markPixels(int draggedRow, QPoint at, std::optional<QPoint> byWayOf = std::nullopt) {
        NoteListView* view = column->listView();
        QPalette palette = view->palette();
        palette.setColor(QPalette::Highlight, QColor(kHighlight));
        view->setPalette(palette);
        QAbstractItemModel* model = view->model();
        std::unique_ptr<QMimeData> drag(model->mimeData({model->index(draggedRow, 0)}));
        QDragEnterEvent enter(at, Qt::MoveAction, drag.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &enter);
        if (byWayOf) {
            QDragMoveEvent earlier(*byWayOf, Qt::MoveAction, drag.get(), Qt::LeftButton,
                                   Qt::NoModifier);
            QApplication::sendEvent(view->viewport(), &earlier);
        }
        QDragMoveEvent move(at, Qt::MoveAction, drag.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &move);
        const QImage shown = view->viewport()->grab().toImage();
        QDragLeaveEvent leave;
        QApplication::sendEvent(view->viewport(), &leave);
        int count = 0;
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width(); ++x)
                count += shown.pixel(x, y) == kHighlight ? 1 : 0;
        return count;
    }
    QRect rowRect(int row) const {
        NoteListView* view = column->listView();
        return view->visualRect(view->model()->index(row, 0));
    }
};

TEST_F(DropMark, OutlinesTheRowOrLinesTheGapInTheHighlightColour) {
    const NodePtr parent = add(document.rootNode(), "parent");
    for (const char* text : {"a", "b", "c"})
        add(parent, text);
    open(parent);
    const QRect target = rowRect(2);
    // An outline goes all round the row.
    EXPECT_GE(markPixels(0, target.center()), 2 * target.width());
    // A line runs between the rows.
    const int between = markPixels(0, {target.center().x(), target.top() + 1});
    EXPECT_GE(between, target.width() / 2);
    EXPECT_LT(between, 2 * target.width());
}

TEST_F(DropMark, NothingIsMarkedWhereTheNoteMayNotGo) {
    const NodePtr parent = add(document.rootNode(), "parent");
    for (const char* text : {"a", "b", "c"})
        add(parent, text);
    open(parent);
    // Onto itself, or just above itself, where it already is.
    EXPECT_EQ(markPixels(1, rowRect(1).center()), 0);
    EXPECT_EQ(markPixels(1, {rowRect(1).center().x(), rowRect(1).top() + 1}), 0);
    // Nor after the drag passed over a place that takes it.
    ASSERT_GT(markPixels(1, rowRect(2).center()), 0);
    EXPECT_EQ(markPixels(1, rowRect(1).center(), rowRect(2).center()), 0);
}

} // namespace
} // namespace quillery::testing
