#pragma once

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

#include <QTemporaryDir>

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
        std::vector<std::string> texts;
        for (const NodePtr& child : document.rootNode()->children()) {
            texts.push_back(child->text());
        }
        return texts;
    }

    static int rowCount(NoteColumn* column) {
        return column ? column->listView()->model()->rowCount() : -1;
    }

    static void addNote(DocumentWindow& window, const std::string& text) {
        Document& document = window.document();
        const NodePtr& root = document.rootNode();
        document.userDidAdd(*NotebookNode::create(root->identifier(), text), *root, 0);
    }

    QTemporaryDir m_directory;
    InMemoryPreferences preferences;
    QtPictureCodec codec;
    FakePrompts prompts;
    DocumentController controller{preferences, codec, prompts};
};

} // namespace quillery
