#pragma once

#include <QAbstractScrollArea>
#include <QImage>

namespace quillery {

// A scrolling view of one picture at a chosen zoom. It shares the caller's decoded picture (QImage
// is implicitly shared) and paints only the part that is on screen, scaled as it is drawn, so even
// a very large picture is never held a second time at full size. A null picture shows the
// placeholder.
class ZoomableImageView : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit ZoomableImageView(QWidget* parent = nullptr);

    const QImage& image() const { return m_image; }
    void setImage(QImage image);

    // Screen pixels per picture pixel.
    double zoom() const { return m_zoom; }
    // Zooms about the centre of the view; the view stops following its size until fitted again.
    void setZoom(double zoom);
    void zoomIn();
    void zoomOut();
    // Zooms so that the whole picture fits, and keeps it fitted while the view is resized.
    void fitToView();

    // The zoom at which the whole picture fits the current viewport.
    double fitZoom() const;

    static constexpr double kMinimumZoom = 0.01;
    static constexpr double kMaximumZoom = 32.0;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    QSize shownSize() const;
    QSizeF contentSize() const;
    // The picture's top-left corner in viewport coordinates.
    QPointF contentOrigin() const;
    void zoomAbout(double zoom, QPointF viewportPoint);
    void updateScrollBars();
    void paintPlaceholder(QPainter& painter);

    QImage m_image;
    // The app's placeholder picture, loaded while there is no picture to show.
    QImage m_placeholder;
    double m_zoom = 1.0;
    bool m_fitting = true;
};

} // namespace quillery
