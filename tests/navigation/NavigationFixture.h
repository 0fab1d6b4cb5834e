#pragma once

#include "document/Document.h"
#include "document/InMemoryPreferences.h"

#include <gtest/gtest.h>
#include <string>

namespace quillery {

// A document with a small tree, for widget tests of the column row:
//   root: a (a1, a2 (a2x)), b
class NavigationFixture : public ::testing::Test {
protected:
    NavigationFixture() {
        a = addNote(document.rootNode(), "a");
        b = addNote(document.rootNode(), "b");
        a1 = addNote(a, "a1");
        a2 = addNote(a, "a2");
        a2x = addNote(a2, "a2x");
    }

    NodePtr addNote(const NodePtr& parent, const std::string& text) {
        document.add(*NotebookNode::create(parent->identifier(), text), *parent, -1);
        return parent->children().back();
    }

    InMemoryPreferences preferences;
    Document document{preferences};
    NodePtr a, b, a1, a2, a2x;
};

} // namespace quillery
