#pragma once

class QRect;

namespace quillery {

class MySplitViewController;

// The scrolling host that shows the column row; asked to bring a rectangle of the row into view.
class MySplitViewControllerDelegate {
public:
    virtual ~MySplitViewControllerDelegate() = default;
    virtual void mySplitViewControllerWantsToScrollToRect(MySplitViewController& controller,
                                                          const QRect& rect) = 0;
};

} // namespace quillery
