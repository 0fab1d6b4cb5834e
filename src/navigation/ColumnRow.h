#pragma once

#include "navigation/ColumnSlots.h"

#include <QPointer>
#include <QWidget>

class QHBoxLayout;

namespace quillery {

class Document;
class NoteColumn;

// The row of columns, one per level of the opened path, with at most one panel (the note editor
// or the picture panel) as an extra column at the right. The rules live in ColumnSlots; this
// widget lays the items out side by side at fixed widths, so the row grows to the right and its
// host scrolls it sideways. It follows the signals of every column and of the picture panel, and
// owns them all, also those put aside while a panel is shown.
class ColumnRow : public QWidget, private ColumnSlots<QWidget*>::Host {
    Q_OBJECT

public:
    // The document must outlive the row. Without one the first column shows no note.
    explicit ColumnRow(Document* document, QWidget* parent = nullptr);
    ~ColumnRow() override;

    NodePtr rootNode() const;

    // The items of the row, left to right: columns, and the panel last while one is shown.
    const std::vector<QWidget*>& items() const { return m_slots.items(); }
    // The column at the depth, or null when that item is not a column.
    NoteColumn* column(int depth) const;
    QWidget* panel() const;
    // The column holding the keyboard focus, or else the one the user worked in last; null while
    // a panel is shown, since the columns are disabled then.
    NoteColumn* activeColumn() const;

    // Shows the panel as the item at the depth and takes ownership of it; a second panel while
    // one is shown is refused and deleted.
    void showPanel(QWidget* panel, int depth);
    void closePanel();
    void focusColumn(int index);

    // Width of a column and of a panel, from the font so that the row scales with it.
    int columnWidth() const;
    int panelWidth() const;

signals:
    // A panel appeared or went away; menus that act on columns follow it.
    void panelShownChanged(bool shown);
    // The rectangle of the row (an item just shown or focused) should be brought into view.
    void scrollRequested(const QRect& rect);

protected:
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QWidget* makeColumn(const NodePtr& node, int depth) override;
    bool isColumn(QWidget* const& item) const override;
    void appendItem(QWidget* const& item) override;
    void removeItem(QWidget* const& item, bool closing) override;
    void setColumnEnabled(QWidget* const& item, bool enabled) override;
    void focusColumn(QWidget* const& item) override;
    void scrollToItem(QWidget* const& item) override;
    void later(std::function<void()> step) override;

    // The picture panel for the picture note, beside the column.
    void showPicture(const NoteColumn& column, const NodePtr& node);
    void applyWidths();
    void noteFocus(QWidget* now);

    Document* m_document;
    QHBoxLayout* m_layout;
    ColumnSlots<QWidget*> m_slots;
    QPointer<NoteColumn> m_lastActiveColumn;
};

} // namespace quillery
