#pragma once

#include <QImage>
#include <QWidget>

class QPushButton;

namespace quillery {

class ZoomableImageView;

// The picture panel shown as a column beside the column of a picture note: the picture in a
// zoomable, scrolling view, fitted to the panel when it opens, and a Done button (or Escape) that
// signals finished(). The panel never closes itself.
class PicturePanel : public QWidget {
    Q_OBJECT

public:
    explicit PicturePanel(QWidget* parent = nullptr);

    // The picture is shared, not copied; a null picture shows the placeholder.
    const QImage& image() const;
    void setImage(QImage image);

signals:
    void finished();

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    ZoomableImageView* m_imageView;
    QPushButton* m_doneButton;
};

} // namespace quillery
