#include "KeyScript.h"
#include "app/AppFixture.h"
#include "columns/EncodedPicture.h"
#include "columns/NodeListModel.h"
#include "columns/NoteEditorPanel.h"
#include "columns/QtPicture.h"

#include <QClipboard>
#include <QMimeData>
#include <QPlainTextEdit>

namespace quillery {
namespace {

class ClipboardCommandsTest : public OutlineWindowFixture {
protected:
    ~ClipboardCommandsTest() override { QGuiApplication::clipboard()->clear(); }

    // The notes under the node and the node itself.
    static std::size_t treeSize(const NotebookNode& node) {
        std::size_t size = 1;
        for (const NodePtr& child : node.children())
            size += treeSize(*child);
        return size;
    }

    // Offers on the clipboard "<address>" as an address, "[picture] text" as a picture and the
    // text, anything else as plain text.
    static void offer(const char* offered) {
        auto* data = new QMimeData;
        QString rest = QString::fromUtf8(offered);
        if (rest.startsWith(QStringLiteral("[picture] "))) {
            QImage image(8, 6, QImage::Format_RGB32);
            image.fill(Qt::green);
            data->setImageData(image);
            rest.remove(0, 10);
        }
        if (rest.startsWith(QLatin1Char('<')))
            data->setUrls({QUrl(rest.mid(1).chopped(1))});
        else
            data->setText(rest);
        QGuiApplication::clipboard()->setMimeData(data);
    }
};

// Keys typed in the window (A selected in the first column), with something offered on the
// clipboard first where given; Paste is greyed out while the clipboard holds nothing.
struct ClipboardCase {
    const char* name;
    const char* offered;
    const char* keys;
    const char* outline;
    std::size_t deleted; // notes among the deleted notes afterwards
    // In the focused column afterwards ("[picture]" for a picture note), or "editing" when the
    // new note opens in the editor; null: not checked.
    const char* selected;
    const char* undo; // the Edit menu's Undo command afterwards, unnamed while an editor is open
};

const ClipboardCase kClipboardCases[] = {
    {"CopyPastesACopyAfterTheNote", nullptr, "Ctrl+C Ctrl+V", "A(a1 a2) A(a1 a2) B C", 0, "A",
     "&Undo Paste"},
    {"CopyPastesIntoItsOwnChildren", nullptr, "Ctrl+C Right Ctrl+V", "A(a1 A(a1 a2) a2) B C", 0,
     "A", "&Undo Paste"},
    {"PasteOnTheAddButtonGoesLast", nullptr, "Ctrl+C Down Down Down Ctrl+V",
     "A(a1 a2) B C A(a1 a2)", 0, "A", "&Undo Paste"},
    {"CutTakesTheNoteToTheDeletedNotes", nullptr, "Ctrl+X", "B C", 1, "B", "&Undo Cut"},
    {"CutAndPasteMovesTheNote", nullptr, "Ctrl+X Down Ctrl+V", "B C A(a1 a2)", 0, "A",
     "&Undo Paste"},
    {"ASecondPasteOfACutCopies", nullptr, "Ctrl+X Ctrl+V Ctrl+V", "B A(a1 a2) A(a1 a2) C", 0, "A",
     "&Undo Paste"},
    {"CutUndone", nullptr, "Ctrl+X Ctrl+Z", "A(a1 a2) B C", 0, nullptr, "&Undo"},
    {"PasteUndone", nullptr, "Ctrl+C Ctrl+V Ctrl+Z", "A(a1 a2) B C", 0, nullptr, "&Undo"},
    {"MoveUndoneAfterCutAndPaste", nullptr, "Ctrl+X Down Ctrl+V Ctrl+Z", "B C", 1, nullptr,
     "&Undo Cut"},
    {"LinesOfTextAreAnOutline", "x\n\t- y\n  * z\nw\r\n", "Ctrl+V", "A(a1 a2) x(y z) w B C", 0, "x",
     "&Undo Paste"},
    {"OneLineIsOneNoteAsItIs", "  - milk  \n", "Ctrl+V", "A(a1 a2) - milk B C", 0, "- milk",
     "&Undo Paste"},
    {"BlankTextPastesNothing", " \n\t\n", "Ctrl+V", "A(a1 a2) B C", 0, "A", "&Undo"},
    {"AnAddressOffTheWebIsText", "file:///etc/passwd", "Ctrl+V", "A(a1 a2) file:///etc/passwd B C",
     0, "file:///etc/passwd", "&Undo Paste"},
    {"TextAroundAnAddressIsText", "see https://e.org", "Ctrl+V", "A(a1 a2) see https://e.org B C",
     0, "see https://e.org", "&Undo Paste"},
    {"AnAddressIsANoteToEdit", "<https://e.org/p>", "Ctrl+V", "A(a1 a2) https://e.org/p\n\n B C", 0,
     "editing", "&Undo"},
    {"AnAddressCopiedAsTextToo", "  https://e.org/a?b=c\n", "Ctrl+V",
     "A(a1 a2) https://e.org/a?b=c\n\n B C", 0, "editing", "&Undo"},
    {"APictureBeforeText", "[picture] words", "Ctrl+V", "A(a1 a2)  B C", 0, "[picture]",
     "&Undo Paste"},
    {"NothingToPaste", nullptr, "Ctrl+V", "A(a1 a2) B C", 0, "A", "&Undo"},
};

class ClipboardKeys : public ClipboardCommandsTest,
                      public ::testing::WithParamInterface<ClipboardCase> {};

TEST_P(ClipboardKeys, ChangeTheOutlineAsOneStep) {
    const ClipboardCase& test = GetParam();
    if (test.offered)
        offer(test.offered);
    EXPECT_EQ(action(*window, "actionPaste").isEnabled(), test.offered != nullptr);
    testing::pressKeys(test.keys);
    const Document& document = window->document();
    EXPECT_EQ(notebookOutline(), test.outline);
    EXPECT_EQ(document.deletedRootNode()->children().size(), test.deleted);
    // The index holds one note an identifier: a pasted copy that kept one is missing from it.
    EXPECT_EQ(treeSize(*document.rootNode()) + treeSize(*document.deletedRootNode()),
              document.nodeCount());
    const std::string selected = test.selected ? test.selected : "";
    if (selected == "editing") {
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return qobject_cast<NoteEditorPanel*>(window->columnRow()->panel()); }));
    } else if (selected == "[picture]") {
        const NoteColumn* column = NoteColumn::containing(QApplication::focusWidget());
        ASSERT_TRUE(column && column->selectedNode());
        EXPECT_TRUE(column->selectedNode()->imageIdentifier());
    } else if (test.selected) {
        EXPECT_EQ(selectedText(), selected);
    }
    EXPECT_EQ(action(*window, "actionUndo").text(), QString::fromLatin1(test.undo));
}

INSTANTIATE_TEST_SUITE_P(Cases, ClipboardKeys, ::testing::ValuesIn(kClipboardCases),
                         [](const auto& caseInfo) { return std::string(caseInfo.param.name); });

TEST_F(ClipboardCommandsTest, CopyOffersTheOutlineAsTextAndAsAPage) {
    testing::pressKeys("Ctrl+C");
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->text(), QStringLiteral("- A\n  - a1\n  - a2\n"));
    EXPECT_TRUE(data->html().contains(QStringLiteral("<li>A\n<ul>\n<li>a1\n</li>")));
}

// Ctrl+V in the note editor pastes the text there, though the clipboard holds a picture a column
// would take.
TEST_F(ClipboardCommandsTest, CtrlVInTheNoteEditorPastesTextThereAndAddsNoNote) {
    offer("[picture] words");
    action(*window, "actionEditNote").trigger();
    ASSERT_TRUE(QTest::qWaitFor(
        [] { return qobject_cast<QPlainTextEdit*>(QApplication::focusWidget()) != nullptr; }));
    auto* editor = qobject_cast<QPlainTextEdit*>(QApplication::focusWidget());
    EXPECT_FALSE(action(*window, "actionPaste").isEnabled());
    QTest::keySequence(editor, QKeySequence::Paste);
    EXPECT_EQ(editor->toPlainText(), QStringLiteral("Awords"));
    EXPECT_EQ(notebookOutline(), "A(a1 a2) B C");
}

// A picture note with a child, copied from one notebook's window into another's by the
// clipboard or by a drag: the picture's bytes come along, and one undo takes the copy back.
TEST_F(ClipboardCommandsTest, NotesGoToAnotherWindowWithTheirPictures) {
    QImage image(8, 6, QImage::Format_RGB32);
    image.fill(Qt::green);
    const QByteArray png = testing::encoded(image, "png");
    Document& source = window->document();
    const Identifier key =
        source.addImage(std::make_shared<QtPicture>(image), {png.begin(), png.end()}, "png");
    source.userDidAdd(*NotebookNode::create(source.rootNode()->identifier(), "", key),
                      *source.rootNode(), 0);
    addNote(*window, "under", source.rootNode()->children()[0]);

    for (const bool byDrag : {false, true}) {
        SCOPED_TRACE(byDrag ? "drag" : "clipboard");
        DocumentWindow& target = *controller.newDocument();
        focusFirstColumn(target);
        if (byDrag) {
            NodeListModel* rows =
                qobject_cast<NodeListModel*>(window->columnRow()->column(0)->listView()->model());
            const std::unique_ptr<QMimeData> data(rows->mimeData({rows->index(0)}));
            target.columnRow()->column(0)->listView()->model()->dropMimeData(
                data.get(), Qt::CopyAction, 0, 0, {});
        } else {
            focusFirstColumn(*window);
            window->columnRow()->column(0)->selectRow(0);
            testing::pressKeys("Ctrl+C");
            EXPECT_TRUE(QGuiApplication::clipboard()->mimeData()->html().contains(
                QStringLiteral("<img src=\"data:image/png;base64,")));
            focusFirstColumn(target);
            testing::pressKeys("Ctrl+V");
        }
        const Document& copy = target.document();
        ASSERT_EQ(outline(*copy.rootNode()), "(under)");
        const NodePtr picture = copy.rootNode()->children()[0];
        ASSERT_TRUE(picture->imageIdentifier());
        const ImageData& stored = copy.images().newImageData().at(*picture->imageIdentifier());
        EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(stored.data.data()),
                             static_cast<qsizetype>(stored.data.size())),
                  png);
        EXPECT_EQ(outline(*source.rootNode()), "(under) A(a1 a2) B C");
        action(target, "actionUndo").trigger();
        EXPECT_EQ(outline(*copy.rootNode()), "");
        target.document().markSaved();
        target.close();
    }
}

} // namespace
} // namespace quillery
