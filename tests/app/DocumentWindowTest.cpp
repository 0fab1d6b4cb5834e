#include "app/DocumentWindow.h"

#include "app/AppCommands.h"
#include "app/AppFixture.h"
#include "columns/EncodedPicture.h"
#include "columns/ExecDialog.h"
#include "columns/QtPicture.h"

#include <QDialog>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>

#include <map>

namespace quillery {
namespace {

// The menus of a document window.
using DocumentWindowTest = AppFixture;

// Undo and Redo are named after the step, select the note they changed where it now stands, or
// what stands in its place when it is gone, and give that column the keyboard; undoing back to
// the start leaves the window unmodified.
TEST_F(DocumentWindowTest, UndoAndRedoSelectTheNoteTheyChanged) {
    DocumentWindow& window = *controller.newDocument();
    QAction& undo = action(window, "actionUndo");
    QAction& redo = action(window, "actionRedo");
    EXPECT_FALSE(undo.isEnabled());
    addNote(window, "a");
    const NodePtr b = addNote(window, "b");
    const NodePtr b1 = addNote(window, "b1", b);
    window.document().userDidMove(*b1, *window.document().rootNode());
    focusFirstColumn(window);
    ColumnRow& row = *window.columnRow();
    struct Step {
        const char* action;
        int depth;
        const char* selected;
    };
    for (const Step& step :
         {Step{"actionUndo", 1, "b1"}, Step{"actionRedo", 0, "b1"}, Step{"actionUndo", 1, "b1"},
          Step{"actionUndo", 0, "b"}, Step{"actionUndo", 0, "a"}}) {
        action(window, step.action).trigger();
        NoteColumn* column = row.column(step.depth);
        ASSERT_NE(column, nullptr) << step.action << " " << step.selected;
        EXPECT_EQ(column->selectedNode() ? column->selectedNode()->text() : "-", step.selected);
        EXPECT_TRUE(QTest::qWaitFor([&] { return column->listView()->hasFocus(); }))
            << step.action << " " << step.selected;
    }
    EXPECT_EQ(undo.text(), QStringLiteral("&Undo Add Note"));
    EXPECT_EQ(redo.text(), QStringLiteral("&Redo Add Note"));
    EXPECT_TRUE(window.isWindowModified());
    undo.trigger();
    EXPECT_FALSE(undo.isEnabled());
    EXPECT_FALSE(window.isWindowModified());
}

// The accent the focused list draws its selection in, as on screen, at the selection's bar.
QColor selectionShown(NoteListView& list) {
    const QRect row = list.visualRect(list.model()->index(list.selectedRow(), 0));
    return list.viewport()->grab().toImage().pixelColor(row.left() + 1, row.center().y());
}

// After a menu of the bar closes, and after a dialog, the column that had the keyboard has it
// again and draws its selection as the one in use.
TEST_F(DocumentWindowTest, TheColumnHasTheKeyboardAgainAfterAMenuOrADialog) {
    DocumentWindow& window = *controller.newDocument();
    addNote(window, "a");
    focusFirstColumn(window);
    NoteListView& list = *window.columnRow()->column(0)->listView();
    const QColor accent = list.palette().color(QPalette::Active, QPalette::Highlight);
    ASSERT_EQ(selectionShown(list), accent);
    QMenuBar* bar = window.menuBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(bar->actions()[1]).center());
    ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::activePopupWidget() != nullptr; }));
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    // What Qt does on X11 as the menu closes: the bar keeps the keyboard, for its titles.
    window.activateWindow();
    bar->setFocus(Qt::MenuBarFocusReason);
    EXPECT_TRUE(QTest::qWaitFor([&] { return list.hasFocus(); }));
    EXPECT_EQ(selectionShown(list), accent);

    QDialog dialog(&window);
    QTimer::singleShot(0, &dialog, [&] {
        // What a desktop may do as a dialog closes: leave no window active.
        dialog.reject();
        window.clearFocus();
        list.clearFocus();
    });
    execDialog(dialog);
    EXPECT_TRUE(QTest::qWaitFor([&] { return list.hasFocus(); }));
    EXPECT_EQ(selectionShown(list), accent);
}

TEST_F(DocumentWindowTest, HistoryAndNoteCommandsWaitWhileAPanelIsOpen) {
    DocumentWindow& window = *controller.newDocument();
    addNote(window, "first");
    for (const bool panel : {true, false}) {
        panel ? window.columnRow()->showPanel(new QWidget, 1) : window.columnRow()->closePanel();
        for (const char* name : {"actionUndo", "actionAddNote", "actionEditNote", "actionFind"})
            EXPECT_EQ(action(window, name).isEnabled(), !panel) << name;
    }
}

// Add Note, from the app's menu or the window's, goes to the column with the keyboard; with no
// column to take it, to a new notebook.
TEST_F(DocumentWindowTest, AddNoteGoesToTheFocusedColumnElseToANewNotebook) {
    AppCommands app;
    int newNotebooks = 0;
    QObject::connect(&app, &AppCommands::newNotebookRequested, [&] { ++newNotebooks; });
    controller.setAppCommands(&app);
    DocumentWindow& window = *controller.newDocument();
    NoteColumn& column = *window.columnRow()->column(0);
    focusFirstColumn(window);
    app.addNote();
    EXPECT_NE(column.temporaryNode(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.columnRow()->panel() != nullptr; }));
    EXPECT_EQ(newNotebooks, 0);

    // Never shown, so no column has been loaded to take the note.
    DocumentWindow hidden(controller, std::make_unique<Document>(preferences, &codec),
                          QStringLiteral("Untitled"));
    action(hidden, "actionAddNote").trigger();
    EXPECT_EQ(newNotebooks, 1);
    EXPECT_TRUE(hidden.document().rootNode()->children().empty());
    controller.setAppCommands(nullptr);
}

TEST_F(DocumentWindowTest, NoTwoCommandsShareAShortcut) {
    DocumentWindow& window = *controller.newDocument();
    std::map<QString, QString> owners;
    for (QAction* each : window.findChildren<QAction*>()) {
        for (const QKeySequence& key : each->shortcuts()) {
            const auto [owner, inserted] = owners.emplace(key.toString(), each->objectName());
            EXPECT_TRUE(inserted) << key.toString().toStdString() << " is taken by "
                                  << owner->second.toStdString() << " and "
                                  << each->objectName().toStdString();
        }
    }
}

// A PNG of one pixel whose header claims the size given: a few dozen bytes that would take
// gigabytes decoded.
QByteArray pictureBomb(quint32 width, quint32 height) {
    QImage pixel(1, 1, QImage::Format_ARGB32);
    pixel.fill(Qt::white);
    QByteArray png = testing::encoded(pixel, "png");
    for (int i = 0; i < 4; ++i) {
        png[16 + i] = static_cast<char>(width >> (24 - 8 * i));
        png[20 + i] = static_cast<char>(height >> (24 - 8 * i));
    }
    quint32 crc = 0xFFFFFFFF; // over the header chunk's type and data
    for (int i = 12; i < 29; ++i) {
        crc ^= static_cast<quint8>(png[i]);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xEDB88320 & (0 - (crc & 1)));
    }
    crc = ~crc;
    for (int i = 0; i < 4; ++i)
        png[29 + i] = static_cast<char>(crc >> (24 - 8 * i));
    return png;
}

// Pictures are read only as far as their size when a notebook opens, and decoded off the main
// thread once shown; one that cannot be decoded is drawn as the placeholder.
TEST_F(AppFixture, PicturesDecodeAfterTheWindowIsShownAndABombIsAPlaceholder) {
    QImage photo(300, 200, QImage::Format_RGB32);
    photo.fill(Qt::darkCyan);
    const QSize placeholder = QtPicture::imageOf(codec.placeholder()).size();
    struct Case {
        QByteArray bytes;
        QSize shown, decoded;
    };
    const std::vector<Case> cases{
        {pictureBomb(50'000, 50'000), QSize(4096, 4096), placeholder},
        {pictureBomb(40'000, 10), QSize(4096, 1), placeholder},
        {testing::encoded(photo, "png"), QSize(300, 200), QSize(300, 200)},
    };
    const std::filesystem::path location = path("Pictures.quillery");
    {
        Document document(preferences, &codec);
        const NodePtr& root = document.rootNode();
        for (const Case& picture : cases) {
            const Identifier key = document.addImage(
                codec.decode({reinterpret_cast<const std::uint8_t*>(picture.bytes.data()),
                              static_cast<std::size_t>(picture.bytes.size())}),
                {picture.bytes.begin(), picture.bytes.end()}, "png");
            document.add(*NotebookNode::create(root->identifier(), "", key), *root, -1);
        }
        ASSERT_FALSE(package::saveTo(document, location));
    }
    DocumentWindow* window = controller.openDocument(location);
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    const auto& notes = window->document().rootNode()->children();
    ASSERT_EQ(notes.size(), cases.size());
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const PicturePtr picture = window->document().image(*notes[i]->imageIdentifier());
        EXPECT_EQ(QSize(picture->width(), picture->height()), cases[i].shown) << i;
        EXPECT_TRUE(QTest::qWaitFor([&] { return !QtPicture::imageOf(picture).isNull(); }, 20'000))
            << i;
        EXPECT_EQ(QtPicture::imageOf(picture).size(), cases[i].decoded) << i;
    }
}

class OpenRecentTest : public AppFixture {
protected:
    // The menu as it shows now: its entries' texts, separators as "-", disabled ones in brackets.
    QStringList entries(DocumentWindow& window) {
        auto* menu = window.findChild<QMenu*>(QStringLiteral("menuOpenRecent"));
        emit menu->aboutToShow();
        QStringList shown;
        for (QAction* each : menu->actions()) {
            const QString text = each->isSeparator() ? QStringLiteral("-") : each->text();
            shown << (each->isEnabled() ? text : QLatin1Char('[') + text + QLatin1Char(']'));
        }
        return shown;
    }
    void choose(DocumentWindow& window, const QString& entry) {
        for (QAction* each :
             window.findChild<QMenu*>(QStringLiteral("menuOpenRecent"))->actions()) {
            if (each->text() == entry)
                each->trigger();
        }
    }
};

// A notebook gone since is named in a warning and leaves the list; Clear Menu empties the list in
// every window.
TEST_F(OpenRecentTest, ANotebookThatIsGoneLeavesTheListAndClearMenuEmptiesIt) {
    const auto gone = makePackage("Gone.quillery", {"x"});
    controller.openDocument(gone)->close();
    DocumentWindow& window = *controller.openDocument(makePackage("Trip.quillery", {"Flights"}));
    std::filesystem::remove_all(gone);
    ASSERT_EQ(entries(window), (QStringList{QStringLiteral("Trip"), QStringLiteral("Gone"),
                                            QStringLiteral("-"), QStringLiteral("&Clear Menu")}));
    const std::size_t windows = controller.windows().size();
    choose(window, QStringLiteral("Gone"));
    ASSERT_EQ(prompts.warnings.size(), 1u);
    EXPECT_TRUE(prompts.warnings[0].text.contains(QStringLiteral("Gone")));
    EXPECT_EQ(controller.windows().size(), windows);
    EXPECT_EQ(entries(window), (QStringList{QStringLiteral("Trip"), QStringLiteral("-"),
                                            QStringLiteral("&Clear Menu")}));
    choose(window, QStringLiteral("&Clear Menu"));
    EXPECT_TRUE(controller.recentDocuments().paths().isEmpty());
    EXPECT_EQ(entries(*controller.newDocument()),
              QStringList{QStringLiteral("[No Recent Notebooks]")});
}

TEST_F(OpenRecentTest, NamesThatRepeatShowTheirFolders) {
    std::filesystem::create_directories(path("work"));
    const auto home = makePackage("Trip.quillery", {"Flights"});
    const auto work = makePackage("work/Trip.quillery", {"Meetings"});
    controller.openDocument(home);
    DocumentWindow& window = *controller.openDocument(work);
    const QString folder = QString::fromStdString(path("").string());
    EXPECT_EQ(entries(window).mid(0, 2),
              (QStringList{QStringLiteral("Trip — ") + folder + QStringLiteral("work"),
                           QStringLiteral("Trip — ") + folder.chopped(1)}));
}

} // namespace
} // namespace quillery
