#pragma once

#include <QListView>
#include <QPersistentModelIndex>

#include <functional>

class QDrag;

namespace quillery {

// The list of a column. It moves its selection with Up and Down like any list, but hands the
// column the keys that are column commands: Up on the first row, Down on the last row (or in an
// empty list), and the keys that delete, edit, move between columns or type. The list lives in
// the sideways-scrolling column row: mostly-horizontal wheel and touchpad motion belongs to the
// row, so it is left for the enclosing scroll area; everything else scrolls the list itself.
//
// A click selects its row when the button is released, not when it is pressed: a press that
// turns into a drag leaves the selection, and with it the columns opened to the right, as they
// are, so the row can be dropped into any of them.
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

    // Runs a drag of a row and answers the action it ended with; by default the desktop's drag.
    // Tests run the drag themselves, as the offscreen platform ends every drag at once.
    using DragRunner = std::function<Qt::DropAction(QDrag& drag)>;
    void setDragRunner(DragRunner runner) { m_dragRunner = std::move(runner); }

signals:
    // The viewport's width changed; row heights depend on it.
    void widthChanged(int width);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;
    void changeEvent(QEvent* event) override;
    // Drops show and perform the action the column's model chooses: a move for notes, a copy
    // for pictures and addresses from elsewhere (so a file manager never deletes the source).
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void chooseDropAction(QDropEvent* event) const;
    void dragRow(const QModelIndex& index);
    // What follows the pointer while the row is dragged.
    QPixmap rowPicture(const QModelIndex& index, QSize size) const;

    DragRunner m_dragRunner;
    // The row a left press went down on, until the release or the drag it turns into.
    QPersistentModelIndex m_pressedRow;
    QPoint m_pressPosition;
    int m_lastWidth = -1;
    bool m_dropAccepted = false;
};

} // namespace quillery
