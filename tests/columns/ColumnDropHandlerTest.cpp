#include "columns/ColumnDropHandler.h"

#include "EncodedPicture.h"
#include "QtPrinters.h"
#include "columns/QtPicture.h"
#include "document/Diagnostics.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace quillery {
namespace {

using testing::encoded;

QImage picture(QColor colour = Qt::red, QSize size = {8, 6}) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

std::unique_ptr<QMimeData> urlDrop(const QUrl& url) {
    auto data = std::make_unique<QMimeData>();
    data->setUrls({url});
    return data;
}

std::unique_ptr<QMimeData> pngDrop() {
    auto data = std::make_unique<QMimeData>();
    data->setData(QStringLiteral("image/png"), encoded(picture(), "png"));
    return data;
}

std::vector<std::string> texts(const NodePtr& parent) {
    std::vector<std::string> result;
    for (const NodePtr& child : parent->children())
        result.push_back(child->text());
    return result;
}

// The notebook the drops land in:
//   root: A (A1 (A1x), A2), B, C, D
class DropFixture : public ::testing::Test {
protected:
    DropFixture()
        : document(preferences)
        , handler(document) {
        a = add("A", document.rootNode());
        b = add("B", document.rootNode());
        c = add("C", document.rootNode());
        d = add("D", document.rootNode());
        a1 = add("A1", a);
        a2 = add("A2", a);
        a1x = add("A1x", a1);
    }

    NodePtr add(const std::string& text, const NodePtr& parent) {
        const NodePtr node = NotebookNode::create(parent->identifier(), text);
        document.add(*node, *parent, static_cast<long>(parent->children().size()));
        return document.node(node->identifier());
    }

    const NodePtr& root() const { return document.rootNode(); }

    std::unique_ptr<QMimeData> noteDrag(const NotebookNode& node) const {
        return std::unique_ptr<QMimeData>(handler.mimeDataForNode(node));
    }

    Qt::DropAction validate(const NodePtr& column, const QMimeData& data, int row,
                            DropPosition position) const {
        return handler.validateDrop(column, data, row, position);
    }

    // Accepts a drop that validation accepted with the expected action.
    ColumnDropHandler::Outcome drop(const NodePtr& column, const QMimeData& data, int row,
                                    DropPosition position, Qt::DropAction expected) {
        EXPECT_EQ(validate(column, data, row, position), expected);
        return handler.acceptDrop(column, data, row, position);
    }

    // A refused drop is refused by both validation and acceptance and leaves no record.
    void expectRefused(const NodePtr& column, const QMimeData& data, int row,
                       DropPosition position) {
        const std::size_t records = document.diffs().size();
        EXPECT_EQ(validate(column, data, row, position), Qt::IgnoreAction);
        EXPECT_FALSE(handler.acceptDrop(column, data, row, position).accepted);
        EXPECT_EQ(document.diffs().size(), records);
    }

    const ImageData& storedPicture(const NotebookNode& note) const {
        return document.images().newImageData().at(*note.imageIdentifier());
    }

    InMemoryPreferences preferences;
    Document document;
    ColumnDropHandler handler;
    NodePtr a, b, c, d, a1, a2, a1x;
};

// Dragging a row of a column within the same column. Rows: A B C D; B (row 1) is dragged.
struct OwnColumnCase {
    int row;
    DropPosition position;
    Qt::DropAction expected;

    friend void PrintTo(const OwnColumnCase& c, std::ostream* out) {
        *out << (c.position == DropPosition::On ? "on row " : "above row ") << c.row;
    }
};

class OwnColumnDropValidation : public DropFixture,
                                public ::testing::WithParamInterface<OwnColumnCase> {};

TEST_P(OwnColumnDropValidation, AnswersByWhereTheRowWouldGo) {
    const auto& [row, position, expected] = GetParam();
    EXPECT_EQ(validate(root(), *noteDrag(*b), row, position), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, OwnColumnDropValidation,
    ::testing::Values(OwnColumnCase{1, DropPosition::On, Qt::IgnoreAction},    // on itself
                      OwnColumnCase{0, DropPosition::On, Qt::MoveAction},      // on another row
                      OwnColumnCase{3, DropPosition::On, Qt::MoveAction},      //
                      OwnColumnCase{1, DropPosition::Above, Qt::IgnoreAction}, // above itself
                      OwnColumnCase{2, DropPosition::Above, Qt::IgnoreAction}, // above the next
                      OwnColumnCase{0, DropPosition::Above, Qt::MoveAction},
                      OwnColumnCase{3, DropPosition::Above, Qt::MoveAction},
                      OwnColumnCase{4, DropPosition::Above, Qt::MoveAction})); // after the last

TEST_F(DropFixture, RowDroppedAboveALaterRowGoesBeforeThatNote) {
    EXPECT_TRUE(drop(root(), *noteDrag(*a), 3, DropPosition::Above, Qt::MoveAction).accepted);
    EXPECT_EQ(texts(root()), (std::vector<std::string>{"B", "C", "A", "D"}));
}

TEST_F(DropFixture, RowDroppedAfterTheLastRowGoesLast) {
    EXPECT_TRUE(drop(root(), *noteDrag(*a), 4, DropPosition::Above, Qt::MoveAction).accepted);
    EXPECT_EQ(texts(root()), (std::vector<std::string>{"B", "C", "D", "A"}));
}

TEST_F(DropFixture, RowDroppedOnAnotherRowBecomesItsLastChild) {
    EXPECT_TRUE(drop(root(), *noteDrag(*d), 0, DropPosition::On, Qt::MoveAction).accepted);
    EXPECT_EQ(texts(root()), (std::vector<std::string>{"A", "B", "C"}));
    EXPECT_EQ(texts(a), (std::vector<std::string>{"A1", "A2", "D"}));
}

TEST_F(DropFixture, RowDroppedWhereItIsChangesNothing) {
    expectRefused(root(), *noteDrag(*b), 1, DropPosition::On);
    expectRefused(root(), *noteDrag(*b), 1, DropPosition::Above);
    expectRefused(root(), *noteDrag(*b), 2, DropPosition::Above);
}

TEST_F(DropFixture, NoteFromAnotherColumnGoesAboveTheRow) {
    EXPECT_TRUE(drop(a, *noteDrag(*c), 1, DropPosition::Above, Qt::MoveAction).accepted);
    EXPECT_EQ(texts(a), (std::vector<std::string>{"A1", "C", "A2"}));
    EXPECT_EQ(texts(root()), (std::vector<std::string>{"A", "B", "D"}));
}

TEST_F(DropFixture, NoteFromAnotherColumnDroppedAfterTheLastRowIsAppended) {
    EXPECT_TRUE(drop(a, *noteDrag(*c), 2, DropPosition::Above, Qt::MoveAction).accepted);
    EXPECT_EQ(texts(a), (std::vector<std::string>{"A1", "A2", "C"}));
}

TEST_F(DropFixture, NoteFromAnotherColumnDroppedOnARowBecomesItsLastChild) {
    EXPECT_TRUE(drop(a, *noteDrag(*c), 0, DropPosition::On, Qt::MoveAction).accepted);
    EXPECT_EQ(texts(a1), (std::vector<std::string>{"A1x", "C"}));
}

TEST_F(DropFixture, NoteIntoTheColumnOfItsOwnChildrenIsRefused) {
    expectRefused(a, *noteDrag(*a), 0, DropPosition::Above);
    expectRefused(a, *noteDrag(*a), 2, DropPosition::Above);
    expectRefused(a, *noteDrag(*a), 0, DropPosition::On);
}

TEST_F(DropFixture, NoteIntoAColumnDeeperInItsSubtreeIsRefused) {
    expectRefused(a1, *noteDrag(*a), 0, DropPosition::Above);
    expectRefused(a1, *noteDrag(*a), 1, DropPosition::Above);
    expectRefused(a1, *noteDrag(*a), 0, DropPosition::On);
}

TEST_F(DropFixture, NoteOnTheRowOfItsCurrentParentIsRefused) {
    expectRefused(root(), *noteDrag(*a1), 0, DropPosition::On);
}

TEST_F(DropFixture, StaleDragOfANoteThatNoLongerExistsIsRefused) {
    const NotebookNode gone(Identifier::makeRandom(), Identifier("root"), "gone");
    expectRefused(a, *noteDrag(gone), 0, DropPosition::Above);
    expectRefused(a, *noteDrag(gone), 0, DropPosition::On);
}

TEST_F(DropFixture, TheRootsNeverMove) {
    expectRefused(a, *noteDrag(*document.deletedRootNode()), 0, DropPosition::Above);
    expectRefused(root(), *noteDrag(*document.deletedRootNode()), 0, DropPosition::On);
    expectRefused(a, *noteDrag(*root()), 0, DropPosition::Above);
}

TEST_F(DropFixture, OnlyTheDraggedNoteTravelsWithItsNotebook) {
    const auto data = noteDrag(*c);
    EXPECT_EQ(data->formats(), (QStringList{QString::fromLatin1(kNodeDragAndDropDataType),
                                            QString::fromLatin1(kNotebookDragAndDropDataType)}));
    EXPECT_EQ(data->data(QString::fromLatin1(kNodeDragAndDropDataType)).toStdString(),
              c->identifier().toString());
}

// A Save As copy shares every identifier with its original; its notes must not move the
// original's notes of the same identifier, nor may a note whose notebook is not named.
TEST_F(DropFixture, NoteFromAnotherNotebookIsRefusedEvenWhenItsIdentifierIsHere) {
    InMemoryPreferences otherPreferences;
    Document copy(otherPreferences);
    const ColumnDropHandler copyHandler(copy);
    const std::unique_ptr<QMimeData> fromCopy(copyHandler.mimeDataForNode(*c));
    auto unnamed = std::make_unique<QMimeData>();
    unnamed->setData(QString::fromLatin1(kNodeDragAndDropDataType),
                     QByteArray::fromStdString(c->identifier().toString()));
    for (const QMimeData* data : {fromCopy.get(), unnamed.get()}) {
        expectRefused(a, *data, 0, DropPosition::Above);
        expectRefused(root(), *data, 0, DropPosition::On);
    }
    EXPECT_EQ(texts(a), (std::vector<std::string>{"A1", "A2"}));
}

TEST_F(DropFixture, NotePayloadThatIsNotTextIsJudgedAsAnAddress) {
    auto data = urlDrop(QUrl(QStringLiteral("https://example.org/")));
    data->setData(QString::fromLatin1(kNodeDragAndDropDataType), QByteArray("\xff\xfe", 2));
    EXPECT_EQ(validate(root(), *data, 0, DropPosition::Above), Qt::CopyAction);
}

TEST_F(DropFixture, PictureAboveARowIsStoredAsJpegAtThatPlace) {
    EXPECT_TRUE(drop(root(), *pngDrop(), 1, DropPosition::Above, Qt::CopyAction).accepted);
    const NodePtr note = root()->children()[1];
    ASSERT_TRUE(note->imageIdentifier());
    EXPECT_EQ(note->text(), "");
    EXPECT_FALSE(note->url());
    const ImageData& stored = storedPicture(*note);
    EXPECT_EQ(stored.fileExtension, "jpg");
    ASSERT_GE(stored.data.size(), 2u);
    EXPECT_EQ(stored.data[0], 0xFF);
    EXPECT_EQ(stored.data[1], 0xD8);
    EXPECT_EQ(QtPicture::imageOf(document.image(*note->imageIdentifier())).size(), QSize(8, 6));
}

TEST_F(DropFixture, PictureOnARowBecomesThatNotesLastChild) {
    EXPECT_TRUE(drop(root(), *pngDrop(), 0, DropPosition::On, Qt::CopyAction).accepted);
    ASSERT_EQ(a->children().size(), 3u);
    EXPECT_TRUE(a->children()[2]->imageIdentifier());
}

TEST_F(DropFixture, PictureKeepsTheWebAddressItCameFrom) {
    auto data = pngDrop();
    data->setUrls({QUrl(QStringLiteral("https://example.org/cat.png"))});
    EXPECT_TRUE(drop(root(), *data, 0, DropPosition::Above, Qt::CopyAction).accepted);
    EXPECT_EQ(root()->children()[0]->url(), "https://example.org/cat.png");
}

TEST_F(DropFixture, PictureFromAFileKeepsNoAddress) {
    auto data = pngDrop();
    data->setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp/cat.png"))});
    EXPECT_TRUE(drop(root(), *data, 0, DropPosition::Above, Qt::CopyAction).accepted);
    EXPECT_FALSE(root()->children()[0]->url());
}

TEST_F(DropFixture, QtImageBecomesAPictureNote) {
    QMimeData data;
    data.setImageData(picture(Qt::blue));
    EXPECT_TRUE(drop(root(), data, 4, DropPosition::Above, Qt::CopyAction).accepted);
    EXPECT_EQ(storedPicture(*root()->children()[4]).fileExtension, "jpg");
}

TEST_F(DropFixture, PictureThatDoesNotDecodeIsRefusedOnDrop) {
    QMimeData data;
    data.setData(QStringLiteral("image/png"), QByteArray("not a picture"));
    const std::size_t records = document.diffs().size();
    EXPECT_FALSE(drop(root(), data, 0, DropPosition::Above, Qt::CopyAction).accepted);
    EXPECT_EQ(document.diffs().size(), records);
}

TEST_F(DropFixture, WebAddressBecomesATextNoteAtTheEndOpenedForEditing) {
    const auto outcome = drop(root(), *urlDrop(QUrl(QStringLiteral("https://example.org/a?b=c"))),
                              0, DropPosition::On, Qt::CopyAction);
    EXPECT_TRUE(outcome.accepted);
    ASSERT_EQ(root()->children().size(), 5u);
    EXPECT_EQ(root()->children()[4]->text(), "https://example.org/a?b=c\n\n");
    EXPECT_EQ(outcome.noteToEdit, root()->children()[4]);
    EXPECT_EQ(a->children().size(), 2u);
}

TEST_F(DropFixture, PlainTextAloneIsRefused) {
    QMimeData data;
    data.setText(QStringLiteral("https://example.org/"));
    expectRefused(root(), data, 0, DropPosition::Above);
    expectRefused(root(), QMimeData(), 0, DropPosition::Above);
}

// Files dropped from a file manager.
class FileDropFixture : public DropFixture {
protected:
    QUrl write(const QString& name, const QByteArray& bytes) {
        QFile file(directory.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return QUrl::fromLocalFile(file.fileName());
    }

    QTemporaryDir directory;
};

struct PictureFileCase {
    const char* name;
    const char* format;
    const char* expectedExtension;

    friend void PrintTo(const PictureFileCase& c, std::ostream* out) { *out << c.name; }
};

class PictureFileDrop : public FileDropFixture,
                        public ::testing::WithParamInterface<PictureFileCase> {};

TEST_P(PictureFileDrop, KeepsTheFilesBytesUnderAnExtensionFromItsName) {
    const auto& [name, format, expectedExtension] = GetParam();
    const QByteArray bytes = encoded(picture(), format);
    const QUrl url = write(QString::fromLatin1(name), bytes);
    EXPECT_TRUE(drop(root(), *urlDrop(url), 2, DropPosition::Above, Qt::CopyAction).accepted);
    const NodePtr note = root()->children()[2];
    ASSERT_TRUE(note->imageIdentifier());
    EXPECT_FALSE(note->url());
    const ImageData& stored = storedPicture(*note);
    EXPECT_EQ(stored.fileExtension, expectedExtension);
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(stored.data.data()),
                         static_cast<qsizetype>(stored.data.size())),
              bytes);
}

INSTANTIATE_TEST_SUITE_P(Extensions, PictureFileDrop,
                         ::testing::Values(PictureFileCase{"cat.png", "png", "png"},
                                           PictureFileCase{"Cat.PNG", "png", "png"},
                                           PictureFileCase{"photo.jpg", "jpeg", "jpg"},
                                           PictureFileCase{"photo.JPEG", "jpeg", "jpg"},
                                           // Neither in the name: the format of the bytes.
                                           PictureFileCase{"scan.tiff", "tiff", "tiff"},
                                           PictureFileCase{"scan.tif", "tiff", "tiff"},
                                           PictureFileCase{"picture", "png", "png"},
                                           PictureFileCase{"photo.jfif", "jpeg", "jpg"}),
                         [](const auto& param) { return "Case" + std::to_string(param.index); });

TEST_F(FileDropFixture, FileThatIsNotAPictureBecomesATextNoteWithItsAddress) {
    const QUrl url = write(QStringLiteral("notes.txt"), "just words");
    const auto outcome = drop(a, *urlDrop(url), 0, DropPosition::Above, Qt::CopyAction);
    EXPECT_TRUE(outcome.accepted);
    EXPECT_EQ(a->children().back()->text(),
              url.toString(QUrl::FullyEncoded).toStdString() + "\n\n");
    EXPECT_EQ(outcome.noteToEdit, a->children().back());
}

TEST_F(FileDropFixture, UnreadableFileIsReportedAndBecomesATextNote) {
    const QUrl url = QUrl::fromLocalFile(directory.filePath(QStringLiteral("missing.png")));
    std::vector<std::string> lines;
    diagnostics::ScopedSink sink([&](std::string_view line) { lines.emplace_back(line); });
    EXPECT_TRUE(drop(root(), *urlDrop(url), 0, DropPosition::Above, Qt::CopyAction).accepted);
    const std::string address = url.toString(QUrl::FullyEncoded).toStdString();
    EXPECT_EQ(lines, std::vector<std::string>{"Couldn't load data at url " + address +
                                              "... just load string"});
    EXPECT_EQ(root()->children().back()->text(), address + "\n\n");
}

TEST_F(DropFixture, PasteOfAPictureAddsItAtTheEndOfTheColumn) {
    EXPECT_TRUE(handler.canPaste(a, *pngDrop()));
    EXPECT_TRUE(handler.paste(a, *pngDrop()).accepted);
    ASSERT_EQ(a->children().size(), 3u);
    EXPECT_TRUE(a->children()[2]->imageIdentifier());
}

TEST_F(DropFixture, PasteOfAnAddressOpensTheNewNoteForEditing) {
    const auto outcome = handler.paste(a, *urlDrop(QUrl(QStringLiteral("https://example.org/"))));
    EXPECT_EQ(outcome.noteToEdit, a->children().back());
}

TEST_F(DropFixture, PasteOfANoteOrOfPlainTextDoesNothing) {
    QMimeData text;
    text.setText(QStringLiteral("words"));
    const auto note = noteDrag(*c);
    EXPECT_FALSE(handler.canPaste(a, *note));
    EXPECT_FALSE(handler.paste(a, *note).accepted);
    EXPECT_FALSE(handler.canPaste(a, text));
    EXPECT_FALSE(handler.paste(a, text).accepted);
    EXPECT_EQ(a->children().size(), 2u);
}

} // namespace
} // namespace quillery
