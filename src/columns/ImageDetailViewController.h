#pragma once

#include <QImage>
#include <QWidget>

class QPushButton;

namespace quillery {

class ImageDetailViewControllerDelegate;
class ZoomableImageView;

// The picture panel shown as a column beside the column of a picture note: the picture in a
// zoomable, scrolling view, fitted to the panel when it opens, and a Done button (or Escape) that
// tells the delegate. The panel never dismisses itself.
class ImageDetailViewController : public QWidget {
    Q_OBJECT

public:
    explicit ImageDetailViewController(QWidget* parent = nullptr);

    // The picture is shared, not copied; a null picture shows the placeholder.
    const QImage& image() const;
    void setImage(QImage image);

    ImageDetailViewControllerDelegate* delegate() const { return m_delegate; }
    void setDelegate(ImageDetailViewControllerDelegate* delegate) { m_delegate = delegate; }

    ZoomableImageView* imageView() const { return m_imageView; }

    void didTapDone();

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    ZoomableImageView* m_imageView;
    QPushButton* m_doneButton;
    ImageDetailViewControllerDelegate* m_delegate = nullptr;
};

} // namespace quillery
