#include "columns/ColumnDropHandler.h"

#include "EncodedPicture.h"
#include "QtPrinters.h"
#include "base/Diagnostics.h"
#include "columns/QtPicture.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"

#include <QFile>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quillery::testing {
namespace {

QImage picture(QColor colour = Qt::red) {
    QImage image(8, 6, QImage::Format_RGB32);
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

// The notebook the drops land in: A(A1(A1x) A2) B C D.
const std::pair<const char*, const char*> kTree[] = {{"A", "root"}, {"B", "root"}, {"C", "root"},
                                                     {"D", "root"}, {"A1", "A"},   {"A2", "A"},
                                                     {"A1x", "A1"}};

class DropFixture : public ::testing::Test {
protected:
    DropFixture()
        : document(preferences)
        , handler(document) {
        notes["root"] = document.rootNode();
        notes["deleted"] = document.deletedRootNode();
        for (const auto& [text, parent] : kTree) {
            const NodePtr node = NotebookNode::create(notes[parent]->identifier(), text);
            document.add(*node, *notes[parent], -1);
            notes[text] = document.node(node->identifier());
        }
    }

    // The tree under the root, children in parentheses; "[picture]" for a picture note.
    std::string outline(const NodePtr& node = nullptr) const {
        std::string out;
        for (const NodePtr& child : (node ? node : document.rootNode())->children()) {
            out += out.empty() ? "" : " ";
            out += child->imageIdentifier() ? "[picture]" : child->text();
            if (!child->children().empty())
                out += "(" + outline(child) + ")";
        }
        return out;
    }

    // Validates and then performs the drop; validation and acceptance must agree.
    ColumnDropHandler::Outcome drop(const NodePtr& column, const QMimeData& data, int row,
                                    DropPosition position, Qt::DropAction expected) {
        const std::size_t records = document.diffs().size();
        EXPECT_EQ(handler.validateDrop(column, data, row, position), expected);
        const ColumnDropHandler::Outcome outcome = handler.acceptDrop(column, data, row, position);
        EXPECT_EQ(outcome.accepted, expected != Qt::IgnoreAction);
        EXPECT_EQ(document.diffs().size(), records + (outcome.accepted ? 1 : 0));
        return outcome;
    }

    const ImageData& storedPicture(const NotebookNode& note) const {
        return document.images().newImageData().at(*note.imageIdentifier());
    }

    InMemoryPreferences preferences;
    Document document;
    ColumnDropHandler handler;
    std::map<std::string, NodePtr> notes;
};

struct NoteDrop {
    const char* name;
    const char* column;
    const char* dragged; // "gone": a note the notebook does not hold
    int row;
    DropPosition position;
    const char* outline; // afterwards; null when refused
};

constexpr auto kOn = DropPosition::On;
constexpr auto kAbove = DropPosition::Above;
constexpr const char* kBefore = "A(A1(A1x) A2) B C D";

const NoteDrop kNoteDrops[] = {
    {"OntoItself", "root", "B", 1, kOn, nullptr},
    {"OntoAnotherRowAsItsLastChild", "root", "B", 0, kOn, "A(A1(A1x) A2 B) C D"},
    {"OntoALaterRow", "root", "B", 3, kOn, "A(A1(A1x) A2) C D(B)"},
    {"AboveItself", "root", "B", 1, kAbove, nullptr},
    {"AboveTheNextRow", "root", "B", 2, kAbove, nullptr},
    {"AboveTheFirstRow", "root", "B", 0, kAbove, "B A(A1(A1x) A2) C D"},
    {"AboveALaterRow", "root", "B", 3, kAbove, "A(A1(A1x) A2) C B D"},
    {"AfterTheLastRow", "root", "B", 4, kAbove, "A(A1(A1x) A2) C D B"},
    {"FromAnotherColumnAboveARow", "A", "C", 1, kAbove, "A(A1(A1x) C A2) B D"},
    {"FromAnotherColumnOntoARow", "A", "C", 0, kOn, "A(A1(A1x C) A2) B D"},
    {"IntoItsOwnChildren", "A", "A", 0, kAbove, nullptr},
    {"DeeperIntoItsSubtree", "A1", "A", 1, kAbove, nullptr},
    {"OntoTheRowOfItsParent", "root", "A1", 0, kOn, nullptr},
    {"ANoteThatIsGone", "A", "gone", 0, kAbove, nullptr},
    {"TheDeletedNotes", "A", "deleted", 0, kAbove, nullptr},
    {"TheRootOntoARow", "root", "root", 0, kOn, nullptr},
};

class NoteDrops : public DropFixture, public ::testing::WithParamInterface<NoteDrop> {};

TEST_P(NoteDrops, MoveTheNoteWhereItMayGo) {
    const NoteDrop& test = GetParam();
    const NotebookNode gone(Identifier::makeRandom(), Identifier("root"), "gone");
    const NotebookNode& dragged =
        std::string(test.dragged) == "gone" ? gone : *notes.at(test.dragged);
    const std::unique_ptr<QMimeData> data(handler.mimeDataForNode(dragged));
    drop(notes.at(test.column), *data, test.row, test.position,
         test.outline ? Qt::MoveAction : Qt::IgnoreAction);
    EXPECT_EQ(outline(), test.outline ? test.outline : kBefore);
}

INSTANTIATE_TEST_SUITE_P(Places, NoteDrops, ::testing::ValuesIn(kNoteDrops),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

// A Save As copy shares every identifier with its original: its notes are copied in, never moved
// (the original's C stays), and a note whose notebook is not named comes with nothing to copy.
TEST_F(DropFixture, ANoteFromAnotherNotebookIsCopiedEvenWhenItsIdentifierIsHere) {
    InMemoryPreferences otherPreferences;
    Document copy(otherPreferences);
    const std::unique_ptr<QMimeData> fromCopy(ColumnDropHandler(copy).mimeDataForNode(*notes["C"]));
    drop(notes["A"], *fromCopy, 0, kAbove, Qt::CopyAction);
    drop(notes["root"], *fromCopy, 3, kOn, Qt::CopyAction);
    EXPECT_EQ(outline(), "A(C A1(A1x) A2) B C D(C)");
    EXPECT_NE(notes["A"]->children()[0]->identifier(), notes["C"]->identifier());

    QMimeData unnamed;
    unnamed.setData(QString::fromLatin1(kNodeDragAndDropDataType),
                    QByteArray::fromStdString(notes["C"]->identifier().toString()));
    drop(notes["A"], unnamed, 0, kAbove, Qt::IgnoreAction);
}

TEST_F(DropFixture, ANotePayloadThatIsNotTextIsJudgedAsAnAddress) {
    auto data = urlDrop(QUrl(QStringLiteral("https://example.org/")));
    data->setData(QString::fromLatin1(kNodeDragAndDropDataType), QByteArray("\xff\xfe", 2));
    EXPECT_EQ(handler.validateDrop(notes["root"], *data, 0, kAbove), Qt::CopyAction);
}

// A picture dragged from elsewhere, with the address it came from, if any (a local file's is
// not kept).
struct PictureDrop {
    const char* name;
    const char* from; // null, a web address or a file path
    int row;
    DropPosition position;
    const char* outline;
};

class PictureDrops : public DropFixture, public ::testing::WithParamInterface<PictureDrop> {};

TEST_P(PictureDrops, AreStoredAsJpegAtTheirPlace) {
    const PictureDrop& test = GetParam();
    auto data = pngDrop();
    const QString from = QString::fromUtf8(test.from ? test.from : "");
    if (!from.isEmpty())
        data->setUrls({from.startsWith(QLatin1Char('/')) ? QUrl::fromLocalFile(from) : QUrl(from)});
    drop(notes["root"], *data, test.row, test.position, Qt::CopyAction);
    EXPECT_EQ(outline(), test.outline);
    const NodePtr note =
        test.position == kOn ? notes["A"]->children().back() : document.rootNode()->children()[0];
    ASSERT_TRUE(note->imageIdentifier());
    EXPECT_EQ(note->url().value_or(""), from.startsWith(QLatin1Char('h')) ? test.from : "");
    EXPECT_EQ(storedPicture(*note).fileExtension, "jpg");
    EXPECT_EQ(QtPicture::imageOf(document.image(*note->imageIdentifier())).size(), QSize(8, 6));
}

INSTANTIATE_TEST_SUITE_P(
    Pictures, PictureDrops,
    ::testing::Values(PictureDrop{"AboveARow", nullptr, 0, kAbove, "[picture] A(A1(A1x) A2) B C D"},
                      PictureDrop{"OntoARow", nullptr, 0, kOn, "A(A1(A1x) A2 [picture]) B C D"},
                      PictureDrop{"FromTheWeb", "https://e.org/cat.png", 0, kAbove,
                                  "[picture] A(A1(A1x) A2) B C D"},
                      PictureDrop{"FromAFile", "/tmp/cat.png", 0, kAbove,
                                  "[picture] A(A1(A1x) A2) B C D"}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST_F(DropFixture, APictureThatDoesNotDecodeIsRefusedOnDrop) {
    QMimeData data;
    data.setData(QStringLiteral("image/png"), QByteArray("not a picture"));
    EXPECT_EQ(handler.validateDrop(notes["root"], data, 0, kAbove), Qt::CopyAction);
    EXPECT_FALSE(handler.acceptDrop(notes["root"], data, 0, kAbove).accepted);
    EXPECT_EQ(outline(), kBefore);
}

TEST_F(DropFixture, AWebAddressBecomesANoteAtTheEndOpenedForEditingAndTextAloneIsRefused) {
    const auto outcome = drop(notes["root"], *urlDrop(QUrl(QStringLiteral("https://e.org/a?b=c"))),
                              0, kOn, Qt::CopyAction);
    EXPECT_EQ(outline(), "A(A1(A1x) A2) B C D https://e.org/a?b=c\n\n");
    EXPECT_EQ(outcome.noteToEdit, document.rootNode()->children().back());

    QMimeData text;
    text.setText(QStringLiteral("https://example.org/"));
    drop(notes["root"], text, 0, kAbove, Qt::IgnoreAction);
    drop(notes["root"], QMimeData(), 0, kAbove, Qt::IgnoreAction);
}

// Files dropped from a file manager.
class FileDrops : public DropFixture {
protected:
    QUrl write(const QString& name, const QByteArray& bytes) {
        QFile file(directory.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return QUrl::fromLocalFile(file.fileName());
    }

    QTemporaryDir directory;
};

struct PictureFile {
    const char* name;
    const char* format;
    const char* extension;
};

class PictureFileDrops : public FileDrops, public ::testing::WithParamInterface<PictureFile> {};

TEST_P(PictureFileDrops, KeepTheBytesUnderAnExtensionThatNamesTheirFormat) {
    const auto& [name, format, extension] = GetParam();
    const QByteArray bytes = encoded(picture(), format);
    drop(notes["root"], *urlDrop(write(QString::fromLatin1(name), bytes)), 2, kAbove,
         Qt::CopyAction);
    const NodePtr note = document.rootNode()->children()[2];
    ASSERT_TRUE(note->imageIdentifier());
    EXPECT_FALSE(note->url());
    const ImageData& stored = storedPicture(*note);
    EXPECT_EQ(stored.fileExtension, extension);
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(stored.data.data()),
                         static_cast<qsizetype>(stored.data.size())),
              bytes);
}

// From the name when it says PNG or JPEG, else from the bytes.
INSTANTIATE_TEST_SUITE_P(Extensions, PictureFileDrops,
                         ::testing::Values(PictureFile{"cat.png", "png", "png"},
                                           PictureFile{"Cat.PNG", "png", "png"},
                                           PictureFile{"photo.jpg", "jpeg", "jpg"},
                                           PictureFile{"photo.JPEG", "jpeg", "jpg"},
                                           PictureFile{"scan.tiff", "tiff", "tiff"},
                                           PictureFile{"scan.tif", "tiff", "tiff"},
                                           PictureFile{"picture", "png", "png"},
                                           PictureFile{"photo.jfif", "jpeg", "jpg"}),
                         [](const auto& param) { return "Case" + std::to_string(param.index); });

TEST_F(FileDrops, AFileThatIsNoPictureOrCannotBeReadBecomesANoteWithItsAddress) {
    const QUrl text = write(QStringLiteral("notes.txt"), "just words");
    const QUrl missing = QUrl::fromLocalFile(directory.filePath(QStringLiteral("missing.png")));
    std::vector<std::string> lines;
    const diagnostics::ScopedSink sink([&](std::string_view line) { lines.emplace_back(line); });
    for (const QUrl& url : {text, missing}) {
        const auto outcome = drop(notes["A"], *urlDrop(url), 0, kAbove, Qt::CopyAction);
        const std::string address = url.toString(QUrl::FullyEncoded).toStdString();
        EXPECT_EQ(notes["A"]->children().back()->text(), address + "\n\n");
        EXPECT_EQ(outcome.noteToEdit, notes["A"]->children().back());
    }
    EXPECT_EQ(lines, std::vector<std::string>{"Couldn't load data at url " +
                                              missing.toString(QUrl::FullyEncoded).toStdString() +
                                              "... just load string"});
}

} // namespace
} // namespace quillery::testing
