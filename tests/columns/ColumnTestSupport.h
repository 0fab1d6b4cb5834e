#pragma once

#include "columns/AddNoteButton.h"
#include "columns/ColumnPrompts.h"
#include "columns/NoteColumn.h"
#include "columns/NoteEditorPanel.h"
#include "columns/NoteListView.h"
#include "columns/QtPicture.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "document/UndoManager.h"

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTest>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace quillery::testing {

// Decodes nothing; answers unknown keys with a 40 × 20 placeholder when asked to.
class FakePictureCodec : public PictureCodec {
public:
    explicit FakePictureCodec(bool withPlaceholder = true)
        : m_withPlaceholder(withPlaceholder) {}
    PicturePtr decode(std::span<const std::uint8_t>) const override { return nullptr; }
    PicturePtr placeholder() const override {
        if (!m_withPlaceholder)
            return nullptr;
        QImage image(40, 20, QImage::Format_RGB32);
        image.fill(Qt::gray);
        return std::make_shared<QtPicture>(image);
    }

private:
    bool m_withPlaceholder;
};

// Stands in for the navigation: records what the column asked for and owns presented panels.
class RecordingColumnDelegate {
public:
    void listen(NoteColumn& column) {
        QObject::connect(&column, &NoteColumn::noteSelected,
                         [this](const NodePtr& node) { selected.push_back(node); });
        QObject::connect(&column, &NoteColumn::picturePreviewRequested,
                         [this](const NodePtr& node) { previewed.push_back(node); });
        QObject::connect(&column, &NoteColumn::selectionCleared, [this] { ++cleared; });
        QObject::connect(&column, &NoteColumn::focusLeftRequested, [this] { ++movedLeft; });
        QObject::connect(&column, &NoteColumn::focusRightRequested, [this] { ++movedRight; });
        QObject::connect(&column, &NoteColumn::editorRequested, [this](NoteEditorPanel* panel) {
            editor.reset(panel);
            editor->setParent(nullptr);
        });
        QObject::connect(&column, &NoteColumn::editorDone, [this] {
            ++dismissed;
            editor.release()->deleteLater();
        });
    }

    std::vector<NodePtr> selected;
    std::vector<NodePtr> previewed;
    int cleared = 0;
    int movedLeft = 0;
    int movedRight = 0;
    int dismissed = 0;
    std::unique_ptr<NoteEditorPanel> editor;
};

// A document with an undo history and one column shown in its own window, with prompts that
// answer from fields instead of blocking on a dialog.
class ColumnFixture : public ::testing::Test {
protected:
    ColumnFixture() { document.setUndoManager(&undoManager); }

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

    std::unique_ptr<NoteColumn> makeColumn(const NodePtr& node, int depth,
                                           RecordingColumnDelegate& navigation) {
        auto made = std::make_unique<NoteColumn>(&document);
        made->setRepresentedNode(node);
        made->setDepth(depth);
        navigation.listen(*made);
        made->setPrompts(prompts());
        made->resize(320, 480);
        return made;
    }

    // Shows the column for the node's children, focused and ready for keys.
    void open(const NodePtr& node, int depth = 1) {
        column = makeColumn(node, depth, delegate);
        column->show();
        column->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(column.get()));
        column->takeFocus();
        QApplication::processEvents();
    }

    ColumnPrompts prompts() {
        ColumnPrompts result;
        result.confirmDelete = [this](QWidget*) {
            ++confirmations;
            return confirmAnswer;
        };
        result.reportMissingPicture = [this](QWidget*) {
            ++missingPictureReports;
        };
        return result;
    }

    // Sends a key to whatever has the keyboard focus, as the keyboard would.
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget* target = QApplication::focusWidget();
        ASSERT_NE(target, nullptr);
        QTest::keyClick(target, key, modifiers);
    }

    QLabel* emptyLabel() const { return column->findChild<QLabel*>(QStringLiteral("emptyLabel")); }
    AddNoteButton* addButton() const { return column->findChild<AddNoteButton*>(); }

    std::vector<std::string> texts(const NodePtr& parent) const {
        std::vector<std::string> result;
        for (const NodePtr& child : parent->children())
            result.push_back(child->text());
        return result;
    }

    InMemoryPreferences preferences;
    FakePictureCodec codec;
    Document document{preferences, &codec};
    UndoManager undoManager;
    RecordingColumnDelegate delegate;
    std::unique_ptr<NoteColumn> column;
    bool confirmAnswer = true;
    int confirmations = 0;
    int missingPictureReports = 0;
};

} // namespace quillery::testing
