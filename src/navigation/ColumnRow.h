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
// widget lays the items out side by side, each at its width, so the row grows to the right and
// its host scrolls it sideways; the last item also takes whatever room is left at the right. A
// column's width is the default until the user drags its right edge or double-clicks it (to fit
// its notes); widths the user chose are kept by depth. The row follows the signals of every
// column and of the picture panel, and owns them all, also those put aside while a panel is
// shown.
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

    // The default width of a column and the width of a panel, from the font so that the row
    // scales with it.
    int columnWidth() const;
    int panelWidth() const;
    // The width of the column at the depth when it is not the last item: the one the user chose,
    // else the default.
    int columnWidth(int depth) const;
    // The widths the user chose, by depth; 0 where the default holds.
    const std::vector<int>& chosenWidths() const { return m_chosenWidths; }
    void setChosenWidths(std::vector<int> widths);
    // Sets the width of the column at the depth as the user's choice, within sensible bounds.
    void chooseWidth(int depth, int width);

signals:
    // A panel appeared or went away; menus that act on columns follow it.
    void panelShownChanged(bool shown);
    // The user chose a column's width.
    void chosenWidthsChanged();
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
    std::vector<int> m_chosenWidths;
};

} // namespace quillery
