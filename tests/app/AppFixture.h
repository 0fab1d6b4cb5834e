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

    QTemporaryDir m_directory;
    InMemoryPreferences preferences;
    QtPictureCodec codec;
    FakePrompts prompts;
    DocumentController controller{preferences, codec, prompts};
};

} // namespace quillery
