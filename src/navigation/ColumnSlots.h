#pragma once

#include "model/NotebookNode.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace quillery {

// The rules of the column row, free of any toolkit so that they can be tested on their own.
//
// The row is an ordered list of items. While browsing, item i is the column of depth i: column 0
// lists the root's children and column i + 1 the children of the note selected in column i. At
// most one panel (the note editor or the picture panel) stands as an extra, last item; while it
// is shown the columns left of it are disabled and those right of it are put aside, to come back
// unchanged when it goes away.
//
// Item is the adapter's handle of a column or a panel (a widget pointer in the app). The model
// decides; the Host carries out each step on the real items, in the order the model calls it.
template <typename Item>
class ColumnSlots {
public:
    class Host {
    public:
        virtual ~Host() = default;
        // A new column for the note's children at the depth, not shown yet.
        virtual Item makeColumn(const NodePtr& node, int depth) = 0;
        virtual bool isColumn(const Item& item) const = 0;
        // Shows the item at the right end of the row.
        virtual void appendItem(const Item& item) = 0;
        // Takes the item out of the row. A closed item is gone for good; one that is put aside
        // comes back later through appendItem().
        virtual void removeItem(const Item& item, bool closing) = 0;
        virtual void setColumnEnabled(const Item& item, bool enabled) = 0;
        // Gives the column the keyboard focus; the column scrolls itself into view.
        virtual void focusColumn(const Item& item) = 0;
        virtual void scrollToItem(const Item& item) = 0;
        // Runs the step on a later turn of the event loop, once the row has been laid out. The
        // step must be dropped if the host goes away first.
        virtual void later(std::function<void()> step) = 0;
    };

    explicit ColumnSlots(Host& host)
        : m_host(host) {}
    ColumnSlots(const ColumnSlots&) = delete;
    ColumnSlots& operator=(const ColumnSlots&) = delete;

    const std::vector<Item>& items() const { return m_items; }
    const std::optional<Item>& panel() const { return m_panel; }
    int itemCount() const { return static_cast<int>(m_items.size()); }

    // Makes the first column, on the root (absent without a document); only the first call does.
    void loadRootNode(const NodePtr& root) {
        if (m_loadedRootNode)
            return;
        appendColumn(root, 0);
        m_loadedRootNode = true;
    }

    // The note was selected in the column at the depth: the columns right of it close and a new
    // column opens for the note, even when the note was shown there already. Ignored while a
    // panel is shown, since the columns left of it are disabled and their selection frozen.
    void select(int depth, const NodePtr& node) {
        if (m_panel)
            return;
        closeItemsFrom(depth + 1);
        appendColumn(node, depth + 1);
    }

    void clearSelection(int depth) {
        if (m_panel)
            return;
        closeItemsFrom(depth + 1);
    }

    void moveLeft(int depth) {
        if (depth > 0)
            focus(depth - 1);
    }

    void moveRight(int depth) {
        if (depth < itemCount() - 1)
            focus(depth + 1);
    }

    // Gives the focus to the column at the index; a panel or a missing index is left alone.
    void focus(int index) {
        if (index < 0 || index >= itemCount() || !m_host.isColumn(at(index)))
            return;
        m_host.focusColumn(at(index));
    }

    // Shows the panel as the item at the depth. Returns false, changing nothing, while another
    // panel is shown; the caller then disposes of the refused panel.
    bool showPanel(const Item& panel, int depth) {
        if (m_panel)
            return false;
        depth = std::clamp(depth, 0, itemCount());
        m_savedItems.clear();
        m_savedDepth = depth;
        for (int i = 0; i < depth; ++i)
            setEnabled(at(i), false);
        while (itemCount() > depth) {
            Item item = m_items[static_cast<std::size_t>(depth)];
            m_items.erase(m_items.begin() + depth);
            m_savedItems.push_back(item);
            m_host.removeItem(item, false);
        }
        m_panel = panel;
        m_items.push_back(panel);
        m_host.appendItem(panel);
        m_host.later([this, panel] {
            if (m_panel == panel)
                m_host.scrollToItem(panel);
        });
        return true;
    }

    // Closes the panel, brings back the columns put aside and, on the next turn, scrolls to and
    // focuses the column that opened the panel. Nothing happens when no panel is shown.
    void closePanel() {
        if (!m_panel)
            return;
        for (int i = 0; i < m_savedDepth && i < itemCount(); ++i)
            setEnabled(at(i), true);
        Item panel = *m_panel;
        m_panel.reset();
        std::erase(m_items, panel);
        m_host.removeItem(panel, true);
        for (const Item& item : m_savedItems) {
            m_items.push_back(item);
            m_host.appendItem(item);
        }
        m_savedItems.clear();
        m_host.later([this] {
            const int index = m_savedDepth - 1;
            if (m_panel || index < 0 || index >= itemCount())
                return;
            m_host.scrollToItem(at(index));
            if (m_host.isColumn(at(index)))
                m_host.focusColumn(at(index));
        });
    }

private:
    const Item& at(int index) const { return m_items[static_cast<std::size_t>(index)]; }

    void setEnabled(const Item& item, bool enabled) {
        if (m_host.isColumn(item))
            m_host.setColumnEnabled(item, enabled);
    }

    void appendColumn(const NodePtr& node, int depth) {
        Item column = m_host.makeColumn(node, depth);
        m_items.push_back(column);
        m_host.appendItem(column);
    }

    void closeItemsFrom(int index) {
        while (itemCount() > index) {
            Item item = m_items[static_cast<std::size_t>(index)];
            m_items.erase(m_items.begin() + index);
            m_host.removeItem(item, true);
        }
    }

    Host& m_host;
    std::vector<Item> m_items;
    std::vector<Item> m_savedItems;
    std::optional<Item> m_panel;
    int m_savedDepth = 0;
    bool m_loadedRootNode = false;
};

} // namespace quillery
