#pragma once

#include <QScrollArea>

namespace quillery {

class Document;
class ColumnRow;

// The content of a document window: the row of columns in an area that scrolls only sideways.
// The row always has the visible height and its own width (at least the visible width), so
// columns and panels are as tall as the window and the row grows to the right.
class ColumnScrollArea : public QScrollArea {
    Q_OBJECT

public:
    // The document must outlive the widget.
    explicit ColumnScrollArea(Document* document, QWidget* parent = nullptr);

    ColumnRow* columnRow() const { return m_row; }

    // Shows the rectangle's left edge at the left of the visible area, as far as the row reaches.
    void scrollTo(const QRect& rect);

private:
    ColumnRow* m_row;
};

} // namespace quillery
