#pragma once

#include "QtPrinters.h"
#include "columns/NoteColumn.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "navigation/ColumnRow.h"
#include "navigation/ColumnScrollArea.h"

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>
#include <map>
#include <string>

namespace quillery {

// A notebook, a (b1, b2 (b2x)), c, shown in a row of columns in its scroll area.
class NavigationFixture : public ::testing::Test {
protected:
    NavigationFixture() {
        for (const auto& [text, parent] : {std::pair{"a", "root"},
                                           {"b", "root"},
                                           {"c", "root"},
                                           {"b1", "b"},
                                           {"b2", "b"},
                                           {"b2x", "b2"}}) {
            const NodePtr under = notes.contains(parent) ? notes[parent] : document.rootNode();
            document.add(*NotebookNode::create(under->identifier(), text), *under, -1);
            notes[text] = under->children().back();
        }
    }

    void show(QSize size) {
        area.resize(size);
        area.show();
        area.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&area));
    }

    // Columns root, b, b2 and b2x: the path to b2x selected.
    void openFourColumns() {
        for (const int index : {1, 1, 0})
            row.column(static_cast<int>(row.items().size()) - 1)->selectRow(index);
        ASSERT_EQ(row.items().size(), 4u);
    }

    // The notes whose children the row's columns show, "panel" for a panel.
    std::string shown() const {
        std::string out;
        for (QWidget* item : row.items()) {
            auto* column = qobject_cast<NoteColumn*>(item);
            out += out.empty() ? "" : " ";
            out += !column ? "panel" : column->depth() ? column->parentNote()->text() : "root";
        }
        return out;
    }

    bool hasFocus(int depth) const {
        return row.column(depth) && row.column(depth)->isAncestorOf(QApplication::focusWidget());
    }

    InMemoryPreferences preferences;
    Document document{preferences};
    std::map<std::string, NodePtr> notes;
    ColumnScrollArea area{&document};
    ColumnRow& row = *area.columnRow();
};

} // namespace quillery
