#include "columns/ZoomableImageView.h"

#include <QIcon>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace quillery {

namespace {

constexpr double kZoomStep = 1.25;

int roundedUp(double value) {
    return static_cast<int>(std::ceil(value));
}

} // namespace

ZoomableImageView::ZoomableImageView(QWidget* parent)
    : QAbstractScrollArea(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setBackgroundRole(QPalette::Dark);
    viewport()->setBackgroundRole(QPalette::Dark);
    viewport()->setAutoFillBackground(true);
    setAccessibleName(tr("Picture"));
}

void ZoomableImageView::setImage(QImage image) {
    m_image = std::move(image);
    m_placeholder = m_image.isNull() ? QImage(QStringLiteral(":/placeholder.png")) : QImage();
    fitToView();
}

QSize ZoomableImageView::shownSize() const {
    if (!m_image.isNull())
        return m_image.size();
    if (!m_placeholder.isNull())
        return m_placeholder.deviceIndependentSize().toSize();
    const int extent = style()->pixelMetric(QStyle::PM_LargeIconSize) * 4;
    return {extent, extent};
}

double ZoomableImageView::fitZoom() const {
    // The placeholder keeps its own size.
    const QSize picture = shownSize();
    const QSize room = viewport()->size();
    if (m_image.isNull() || picture.isEmpty() || room.isEmpty())
        return 1.0;
    const double zoom =
        std::min(double(room.width()) / picture.width(), double(room.height()) / picture.height());
    return std::clamp(zoom, kMinimumZoom, kMaximumZoom);
}

void ZoomableImageView::fitToView() {
    m_fitting = true;
    m_zoom = fitZoom();
    updateScrollBars();
    viewport()->update();
}

void ZoomableImageView::setZoom(double zoom) {
    zoomAbout(zoom, QRectF(viewport()->rect()).center());
}

void ZoomableImageView::zoomIn() {
    setZoom(m_zoom * kZoomStep);
}

void ZoomableImageView::zoomOut() {
    setZoom(m_zoom / kZoomStep);
}

// Keeps the picture point under viewportPoint where it is on screen.
void ZoomableImageView::zoomAbout(double zoom, QPointF viewportPoint) {
    zoom = std::clamp(zoom, kMinimumZoom, kMaximumZoom);
    const QPointF picturePoint = (viewportPoint - contentOrigin()) / m_zoom;
    m_fitting = false;
    m_zoom = zoom;
    updateScrollBars();
    const QPointF wanted = picturePoint * m_zoom - viewportPoint;
    horizontalScrollBar()->setValue(static_cast<int>(std::lround(wanted.x())));
    verticalScrollBar()->setValue(static_cast<int>(std::lround(wanted.y())));
    viewport()->update();
}

QSizeF ZoomableImageView::contentSize() const {
    return QSizeF(shownSize()) * m_zoom;
}

QPointF ZoomableImageView::contentOrigin() const {
    // A picture smaller than the view is centred; a larger one scrolls.
    const QSizeF content = contentSize();
    const QSize room = viewport()->size();
    const double x = content.width() < room.width() ? (room.width() - content.width()) / 2
                                                    : -horizontalScrollBar()->value();
    const double y = content.height() < room.height() ? (room.height() - content.height()) / 2
                                                      : -verticalScrollBar()->value();
    return {x, y};
}

void ZoomableImageView::updateScrollBars() {
    const QSizeF content = contentSize();
    const QSize room = viewport()->size();
    horizontalScrollBar()->setRange(0, std::max(0, roundedUp(content.width()) - room.width()));
    verticalScrollBar()->setRange(0, std::max(0, roundedUp(content.height()) - room.height()));
    horizontalScrollBar()->setPageStep(room.width());
    verticalScrollBar()->setPageStep(room.height());
    horizontalScrollBar()->setSingleStep(std::max(1, room.width() / 20));
    verticalScrollBar()->setSingleStep(std::max(1, room.height() / 20));
}

void ZoomableImageView::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    if (m_image.isNull()) {
        paintPlaceholder(painter);
        return;
    }
    const QRectF target(contentOrigin(), contentSize());
    const QRectF visible = target.intersected(QRectF(viewport()->rect()));
    if (visible.isEmpty())
        return;
    // Only the visible part of the shared picture is read; nothing is copied at full size.
    const QRectF source((visible.topLeft() - target.topLeft()) / m_zoom, visible.size() / m_zoom);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_zoom < 2.0);
    painter.drawImage(visible, m_image, source);
}

void ZoomableImageView::paintPlaceholder(QPainter& painter) {
    const QRectF target(contentOrigin(), contentSize());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!m_placeholder.isNull()) {
        painter.drawImage(target, m_placeholder);
        return;
    }
    // Without the app's resources (a test, say) the theme's own sign for a missing picture.
    const QIcon icon = QIcon::fromTheme(QStringLiteral("image-missing"),
                                        style()->standardIcon(QStyle::SP_FileIcon));
    icon.paint(&painter, target.toAlignedRect());
}

void ZoomableImageView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    if (m_fitting)
        m_zoom = fitZoom();
    updateScrollBars();
}

void ZoomableImageView::wheelEvent(QWheelEvent* event) {
    if (!(event->modifiers() & Qt::ControlModifier)) {
        QAbstractScrollArea::wheelEvent(event);
        return;
    }
    const double steps = event->angleDelta().y() / 120.0;
    if (steps != 0.0)
        zoomAbout(m_zoom * std::pow(kZoomStep, steps), event->position());
    event->accept();
}

void ZoomableImageView::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        zoomIn();
        return;
    case Qt::Key_Minus:
        zoomOut();
        return;
    case Qt::Key_0:
        fitToView();
        return;
    default:
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void ZoomableImageView::scrollContentsBy(int, int) {
    viewport()->update();
}

} // namespace quillery
