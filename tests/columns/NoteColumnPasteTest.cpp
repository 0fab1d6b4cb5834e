#include "ColumnTestSupport.h"
#include "QtPrinters.h"
#include "columns/ColumnDropHandler.h"

#include <QClipboard>
#include <QMimeData>

#include <functional>

namespace quillery::testing {
namespace {

QImage picture() {
    QImage image(8, 6, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}

// A column showing "Trip": Flights, Hotels; the clipboard is emptied after each test.
class NoteColumnPasteTest : public ColumnFixture {
protected:
    NoteColumnPasteTest() {
        trip = add(document.rootNode(), "Trip");
        add(trip, "Flights");
        add(trip, "Hotels");
    }
    ~NoteColumnPasteTest() override { QGuiApplication::clipboard()->clear(); }

    // The clipboard takes the data.
    static void copy(QMimeData* data) { QGuiApplication::clipboard()->setMimeData(data); }

    int rows() const { return column->listView()->model()->rowCount(); }

    NodePtr trip;
};

TEST_F(NoteColumnPasteTest, APictureIsAddedAtTheEndOfTheColumnInOneUndoableStep) {
    open(trip);
    auto* data = new QMimeData;
    data->setImageData(picture());
    copy(data);

    ASSERT_TRUE(column->canPaste());
    EXPECT_TRUE(column->paste());

    ASSERT_EQ(trip->children().size(), 3u);
    EXPECT_TRUE(trip->children().back()->imageIdentifier().has_value());
    EXPECT_EQ(rows(), 3);
    undoManager.undo();
    EXPECT_EQ(texts(trip), (std::vector<std::string>{"Flights", "Hotels"}));
    EXPECT_EQ(rows(), 2);
}

TEST_F(NoteColumnPasteTest, AnAddressBecomesTheLastNoteAndOpensInTheEditorLikeADrop) {
    open(trip);
    auto* data = new QMimeData;
    data->setUrls({QUrl(QStringLiteral("https://example.org/page"))});
    copy(data);

    EXPECT_TRUE(column->paste());

    EXPECT_EQ(texts(trip),
              (std::vector<std::string>{"Flights", "Hotels", "https://example.org/page\n\n"}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return delegate.editor != nullptr; }));
    EXPECT_EQ(delegate.editor->note(), trip->children().back());
}

// What a browser puts on the clipboard when its address bar is copied.
TEST_F(NoteColumnPasteTest, AWebAddressCopiedAsTextIsPastedAsAnAddress) {
    open(trip);
    auto* data = new QMimeData;
    data->setText(QStringLiteral("  https://example.org/a?b=c\n"));
    copy(data);

    EXPECT_TRUE(column->paste());

    EXPECT_EQ(trip->children().back()->text(), "https://example.org/a?b=c\n\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return delegate.editor != nullptr; }));
}

TEST_F(NoteColumnPasteTest, NotesTextAndDisabledColumnsTakeNothing) {
    const NodePtr flights = trip->children().front();
    const std::vector<std::pair<const char*, std::function<QMimeData*()>>> refused = {
        {"plain text",
         [] {
             auto* data = new QMimeData;
             data->setText(QStringLiteral("just words"));
             return data;
         }},
        {"text around an address",
         [] {
             auto* data = new QMimeData;
             data->setText(QStringLiteral("see https://example.org"));
             return data;
         }},
        {"an address that is not on the web",
         [] {
             auto* data = new QMimeData;
             data->setText(QStringLiteral("file:///etc/passwd"));
             return data;
         }},
        {"a copied note",
         [&] {
             return ColumnDropHandler(document).mimeDataForNode(*flights);
         }},
        {"nothing",
         [] {
             return new QMimeData;
         }},
    };
    open(trip);
    for (const auto& [name, make] : refused) {
        copy(make());
        EXPECT_FALSE(column->canPaste()) << name;
        EXPECT_FALSE(column->paste()) << name;
    }

    auto* data = new QMimeData;
    data->setImageData(picture());
    copy(data);
    column->setColumnEnabled(false);
    EXPECT_FALSE(column->canPaste());
    EXPECT_FALSE(column->paste());

    EXPECT_EQ(texts(trip), (std::vector<std::string>{"Flights", "Hotels"}));
    QApplication::processEvents();
    EXPECT_EQ(delegate.editor, nullptr);
}

} // namespace
} // namespace quillery::testing
