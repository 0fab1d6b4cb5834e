#pragma once

#include "OpenedUrls.h"
#include "QtPrinters.h"
#include "app/DocumentController.h"
#include "app/DocumentWindow.h"
#include "app/FakePrompts.h"
#include "app/QtPictureCodec.h"
#include "columns/NoteColumn.h"
#include "columns/NoteListView.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "document/UndoManager.h"
#include "navigation/ColumnRow.h"
#include "storage/NotebookPackage.h"

#include <QAction>
#include <QApplication>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillery {

// A document controller with scripted prompts, and packages made on disk with the core.
class AppFixture : public ::testing::Test {
protected:
    // The recent list and the session live in the settings, which the tests of one run share.
    AppFixture() {
        controller.recentDocuments().clear();
        controller.session().clear();
        testing::openedUrls().clear();
    }

    std::filesystem::path path(const std::string& name) const {
        return std::filesystem::path(m_directory.path().toStdString()) / name;
    }

    // A package at the path with one top-level note per text.
    std::filesystem::path makePackage(const std::string& name,
                                      const std::vector<std::string>& texts) {
        Document document(preferences, &codec);
        for (const std::string& text : texts) {
            const NodePtr& root = document.rootNode();
            document.add(*NotebookNode::create(root->identifier(), text), *root, -1);
        }
        const std::filesystem::path location = path(name);
        const auto error = package::saveTo(document, location);
        EXPECT_FALSE(error.has_value()) << (error ? error->message : std::string());
        return location;
    }

    // Top-level note texts of the package as stored on disk now.
    std::vector<std::string> textsOnDisk(const std::filesystem::path& location) {
        Document document(preferences, &codec);
        const auto error = package::read(document, location, codec);
        EXPECT_FALSE(error.has_value()) << (error ? error->message : std::string());
        return texts(*document.rootNode());
    }

    static std::vector<std::string> texts(const NotebookNode& parent) {
        std::vector<std::string> result;
        for (const NodePtr& child : parent.children())
            result.push_back(child->text());
        return result;
    }

    static int rowCount(NoteColumn* column) {
        return column ? column->listView()->model()->rowCount() : -1;
    }

    // Adds a note as the user would, under the parent (the root by default), last or at the index.
    static NodePtr addNote(DocumentWindow& window, const std::string& text,
                           NodePtr parent = nullptr, long at = -1) {
        Document& document = window.document();
        parent = parent ? parent : document.rootNode();
        document.userDidAdd(*NotebookNode::create(parent->identifier(), text), *parent, at);
        return at < 0 ? parent->children().back()
                      : parent->children()[static_cast<std::size_t>(at)];
    }

    // Shows the window with the keyboard in its first column.
    static void focusFirstColumn(DocumentWindow& window) {
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        window.columnRow()->column(0)->takeFocus();
        QApplication::processEvents();
    }

    static QAction& action(DocumentWindow& window, const char* name) {
        auto* found = window.findChild<QAction*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }

    // The tree under the note, children in parentheses: "A(a1 a2) B".
    static std::string outline(const NotebookNode& node) {
        std::string out;
        for (const NodePtr& child : node.children()) {
            out += (out.empty() ? "" : " ") + child->text();
            if (!child->children().empty())
                out += "(" + outline(*child) + ")";
        }
        return out;
    }

    QTemporaryDir m_directory;
    InMemoryPreferences preferences;
    QtPictureCodec codec;
    FakePrompts prompts;
    DocumentController controller{preferences, codec, prompts};
};

// A shown notebook holding A(a1 a2) B C, its first column focused on A, no step to undo.
class OutlineWindowFixture : public AppFixture {
protected:
    OutlineWindowFixture() {
        window = controller.newDocument();
        const NodePtr a = addNote(*window, "A");
        addNote(*window, "a1", a);
        addNote(*window, "a2", a);
        addNote(*window, "B");
        addNote(*window, "C");
        window->undoManager().removeAllActions();
        focusFirstColumn(*window);
    }

    std::string notebookOutline() const { return outline(*window->document().rootNode()); }

    // The selected note of the column with the keyboard focus, or "".
    static std::string selectedText() {
        NoteColumn* column = NoteColumn::containing(QApplication::focusWidget());
        const NodePtr note = column ? column->selectedNode() : nullptr;
        return note ? note->text() : std::string();
    }

    DocumentWindow* window = nullptr;
};

} // namespace quillery
