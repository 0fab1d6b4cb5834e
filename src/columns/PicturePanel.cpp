#include "columns/PicturePanel.h"

#include "columns/ZoomableImageView.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace quillery {

namespace {

QToolButton* makeToolButton(QWidget* parent, const QString& iconName, const QString& text,
                            const QString& toolTip) {
    auto* button = new QToolButton(parent);
    button->setIcon(QIcon::fromTheme(iconName));
    button->setText(text);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setAutoRaise(true);
    return button;
}

} // namespace

PicturePanel::PicturePanel(QWidget* parent)
    : QWidget(parent)
    , m_imageView(new ZoomableImageView(this))
    , m_doneButton(new QPushButton(tr("Done"), this)) {
    setObjectName(QStringLiteral("PicturePanel"));
    m_imageView->setObjectName(QStringLiteral("imageView"));
    m_doneButton->setObjectName(QStringLiteral("doneButton"));
    m_doneButton->setDefault(true);

    auto* zoomOut =
        makeToolButton(this, QStringLiteral("zoom-out"), QStringLiteral("\u2212"), tr("Zoom Out"));
    auto* zoomIn =
        makeToolButton(this, QStringLiteral("zoom-in"), QStringLiteral("+"), tr("Zoom In"));
    auto* fit = makeToolButton(this, QStringLiteral("zoom-fit-best"), tr("Fit"), tr("Zoom to Fit"));
    zoomOut->setObjectName(QStringLiteral("zoomOutButton"));
    zoomIn->setObjectName(QStringLiteral("zoomInButton"));
    fit->setObjectName(QStringLiteral("fitButton"));

    auto* bar = new QHBoxLayout;
    bar->addWidget(zoomOut);
    bar->addWidget(zoomIn);
    bar->addWidget(fit);
    bar->addStretch();
    bar->addWidget(m_doneButton);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(bar);
    layout->addWidget(m_imageView, 1);

    connect(zoomOut, &QToolButton::clicked, m_imageView, &ZoomableImageView::zoomOut);
    connect(zoomIn, &QToolButton::clicked, m_imageView, &ZoomableImageView::zoomIn);
    connect(fit, &QToolButton::clicked, m_imageView, &ZoomableImageView::fitToView);
    connect(m_doneButton, &QPushButton::clicked, this, &PicturePanel::finished);
    setFocusProxy(m_imageView);
}

const QImage& PicturePanel::image() const {
    return m_imageView->image();
}

void PicturePanel::setImage(QImage image) {
    m_imageView->setImage(std::move(image));
}

void PicturePanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // The layout gives the view its size only once the panel is on screen.
    QTimer::singleShot(0, m_imageView, &ZoomableImageView::fitToView);
}

void PicturePanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        emit finished();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace quillery
