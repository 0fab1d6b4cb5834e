#pragma once

#include <QListView>

namespace quillery {

// The list of a column. It moves its selection with Up and Down like any list, but hands the
// column the keys that are column commands: Up on the first row, Down on the last row (or in an
// empty list), and the keys that delete, edit, move between columns or type. The list lives in
// the sideways-scrolling column row: mostly-horizontal wheel and touchpad motion belongs to the
// row, so it is left for the enclosing scroll area; everything else scrolls the list itself.
class NoteListView : public QListView {
    Q_OBJECT

public:
    explicit NoteListView(QWidget* parent = nullptr);

    // The selected row, or -1.
    int selectedRow() const;
    // Whether a drag over the list was last at a place that takes it. The list itself keeps the
    // last accepted mark when the drag moves on to a refused place, so the mark asks here.
    bool dropMarkShown() const { return m_dropAccepted; }

    // True when the motion should scroll the row rather than this list.
    static bool isSidewaysMotion(QPoint delta);

signals:
    // The viewport's width changed; row heights depend on it.
    void widthChanged(int width);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    // Drops show and perform the action the column's model chooses: a move for notes, a copy
    // for pictures and addresses from elsewhere (so a file manager never deletes the source).
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void chooseDropAction(QDropEvent* event) const;

    int m_lastWidth = -1;
    bool m_dropAccepted = false;
};

} // namespace quillery
