#pragma once

#include <QListView>

namespace quillery {

// A list that lives inside the sideways-scrolling column row. Mostly-horizontal wheel and
// touchpad motion belongs to the row, so it is left for the enclosing scroll area; everything
// else scrolls the list itself.
class MyScrollView : public QListView {
    Q_OBJECT

public:
    explicit MyScrollView(QWidget* parent = nullptr);

    // True when the motion should scroll the row rather than this list.
    static bool isSidewaysMotion(QPoint delta);

protected:
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace quillery
