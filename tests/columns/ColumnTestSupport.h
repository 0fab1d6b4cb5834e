#pragma once

#include "KeyScript.h"
#include "OpenedUrls.h"
#include "QtPrinters.h"
#include "columns/AddNoteButton.h"
#include "columns/NoteColumn.h"
#include "columns/NoteListView.h"
#include "columns/QtPicture.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "document/UndoManager.h"

#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTest>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace quillery::testing {

// Decodes nothing; answers pictures it does not know with a 40 × 20 placeholder.
class FakePictureCodec : public PictureCodec {
public:
    PicturePtr decode(std::span<const std::uint8_t>) const override { return nullptr; }
    PicturePtr placeholder() const override {
        QImage image(40, 20, QImage::Format_RGB32);
        image.fill(Qt::gray);
        return std::make_shared<QtPicture>(image);
    }
};

// What a column asked of the row around it. The editor it hands over is kept here, as the row
// would keep it, and let go when the column is done with it.
struct ColumnSignals {
    explicit ColumnSignals(NoteColumn& column) {
        QObject::connect(&column, &NoteColumn::noteSelected,
                         [this](const NodePtr& node) { selected.push_back(node); });
        QObject::connect(&column, &NoteColumn::selectionCleared, [this] { asked += 'x'; });
        QObject::connect(&column, &NoteColumn::picturePreviewRequested,
                         [this](const NodePtr& node) { previewed.push_back(node); });
        QObject::connect(&column, &NoteColumn::focusLeftRequested, [this] { asked += '<'; });
        QObject::connect(&column, &NoteColumn::focusRightRequested, [this] { asked += '>'; });
        QObject::connect(&column, &NoteColumn::editorRequested, [this](NoteEditorPanel* panel) {
            editor.reset(panel);
            editor->setParent(nullptr);
        });
        QObject::connect(&column, &NoteColumn::editorDone, [this] {
            ++editorsDone;
            editor.release()->deleteLater();
        });
    }

    std::vector<NodePtr> selected;
    std::vector<NodePtr> previewed;
    // The rest, in order: 'x' the selection cleared, '<' and '>' the focus asked to move.
    std::string asked;
    int editorsDone = 0;
    std::unique_ptr<NoteEditorPanel> editor;
};

// A document with an undo history, and a column over one of its notes in a window of its own,
// with prompts that answer from fields instead of blocking on a dialog.
class ColumnFixture : public ::testing::Test {
protected:
    ColumnFixture() {
        document.setUndoManager(&undoManager);
        openedUrls().clear();
    }

    // Adds a note through the document (one recorded edit) and returns the node in the tree.
    NodePtr add(const NodePtr& parent, const std::string& text, long at = -1) {
        const long index = at < 0 ? static_cast<long>(parent->children().size()) : at;
        document.userDidAdd(*NotebookNode::create(parent->identifier(), text), *parent, index);
        return parent->children()[static_cast<std::size_t>(index)];
    }

    NodePtr addPicture(const NodePtr& parent, QSize size) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::blue);
        const Identifier key = document.addImage(std::make_shared<QtPicture>(image), {1, 2}, "png");
        document.userDidAdd(*NotebookNode::create(parent->identifier(), "", key), *parent,
                            static_cast<long>(parent->children().size()));
        return parent->children().back();
    }

    std::unique_ptr<NoteColumn> makeColumn(const NodePtr& node, int depth = 1) {
        auto made = std::make_unique<NoteColumn>(&document);
        made->setParentNote(node);
        made->setDepth(depth);
        ColumnPrompts answers;
        answers.confirmDelete = [this](QWidget*, const NotebookNode&) {
            ++confirmations;
            return confirmAnswer;
        };
        answers.reportPictureProblem = [this](QWidget*, PictureProblem problem) {
            pictureProblems.push_back(problem);
        };
        made->setPrompts(std::move(answers));
        made->resize(320, 480);
        return made;
    }

    // Shows the column for the node's children, focused and ready for keys.
    void open(const NodePtr& node, int depth = 1) {
        column = makeColumn(node, depth);
        heard = std::make_unique<ColumnSignals>(*column);
        column->show();
        column->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(column.get()));
        column->takeFocus();
        QApplication::processEvents();
    }

    // The texts of the note's children, joined by commas.
    static std::string texts(const NodePtr& parent) {
        std::string result;
        for (const NodePtr& child : parent->children())
            result += (child == parent->children().front() ? "" : ", ") + child->text();
        return result;
    }

    // The texts the column's rows show, joined by commas.
    static std::string shown(const NoteColumn& column) {
        std::string result;
        const QAbstractItemModel* model = column.listView()->model();
        for (int row = 0; row < model->rowCount(); ++row)
            result += (row ? ", " : "") + model->index(row, 0).data().toString().toStdString();
        return result;
    }

    QLabel* emptyLabel() const { return column->findChild<QLabel*>(QStringLiteral("emptyLabel")); }
    AddNoteButton* addButton() const { return column->findChild<AddNoteButton*>(); }
    NoteEditorPanel* editor() const { return heard->editor.get(); }

    InMemoryPreferences preferences;
    FakePictureCodec codec;
    Document document{preferences, &codec};
    UndoManager undoManager;
    // Declared first, so it still listens while the column goes.
    std::unique_ptr<ColumnSignals> heard;
    std::unique_ptr<NoteColumn> column;
    bool confirmAnswer = true;
    int confirmations = 0;
    std::vector<PictureProblem> pictureProblems;
};

} // namespace quillery::testing
