#pragma once

namespace quillery {

class ImageDetailViewController;

class ImageDetailViewControllerDelegate {
public:
    virtual ~ImageDetailViewControllerDelegate() = default;
    virtual void imageDetailViewControllerDidTapDone(ImageDetailViewController& panel) = 0;
};

} // namespace quillery
