#pragma once

#include <QScrollArea>

namespace quillery {

class Document;
class MySplitViewController;

// The content of a document window: the row of columns in an area that scrolls only sideways.
// The row always has the visible height and its own width (at least the visible width), so
// columns and panels are as tall as the window and the row grows to the right.
class MyHorizontalScrollViewController : public QScrollArea {
    Q_OBJECT

public:
    // The document must outlive the widget.
    explicit MyHorizontalScrollViewController(Document* document, QWidget* parent = nullptr);

    MySplitViewController* splitViewController() const { return m_splitViewController; }

    // Shows the rectangle's left edge at the left of the visible area, as far as the row reaches.
    void scrollTo(const QRect& rect);

private:
    MySplitViewController* m_splitViewController;
};

} // namespace quillery
