#pragma once

#include <QWidget>

namespace quillery {

// The grip along the right edge of a column in the row: dragging it asks for the column to be
// as wide as the pointer says, and a double-click asks for the column to fit its notes. It lies
// over the column's last few pixels, follows the column's size, draws nothing and shows the
// resizing pointer.
class ColumnEdge : public QWidget {
    Q_OBJECT

public:
    // Made a child of the column, whose edge it is.
    explicit ColumnEdge(QWidget* column);

    static int gripWidth();

signals:
    void widthRequested(int width);
    void fitRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    void follow();

    // While a drag is under way: where it started, and the column's width then.
    int m_startX = 0;
    int m_startWidth = -1;
};

} // namespace quillery
