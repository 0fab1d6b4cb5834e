#include "columns/PicturePanel.h"

#include "QtPrinters.h"
#include "columns/ZoomableImageView.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace quillery {
namespace {

QImage picture(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    return image;
}

class PicturePanelTest : public ::testing::Test {
protected:
    void show(QImage image, QSize size = {400, 300}) {
        panel.setImage(std::move(image));
        panel.resize(size);
        panel.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&panel));
        QCoreApplication::processEvents();
    }

    ZoomableImageView& view() { return *panel.findChild<ZoomableImageView*>(); }
    QSize viewport() { return view().viewport()->size(); }
    QSizeF shown() { return QSizeF(panel.image().size()) * view().zoom(); }

    // The picture fits the view and touches it on one side.
    void expectFitted() {
        EXPECT_LE(shown().width(), viewport().width() + 0.5);
        EXPECT_LE(shown().height(), viewport().height() + 0.5);
        EXPECT_TRUE(std::abs(shown().width() - viewport().width()) < 1.0 ||
                    std::abs(shown().height() - viewport().height()) < 1.0);
    }

    PicturePanel panel;
};

TEST_F(PicturePanelTest, OpensAndStaysFittedWhenResizedUntilZoomed) {
    for (const QSize size : {QSize(40, 20), QSize(30, 500), QSize(1600, 800)}) {
        show(picture(size.width(), size.height()));
        expectFitted();
    }
    panel.resize(700, 500);
    QCoreApplication::processEvents();
    expectFitted();

    view().zoomIn();
    const double zoomed = view().zoom();
    panel.resize(300, 300);
    QCoreApplication::processEvents();
    EXPECT_DOUBLE_EQ(view().zoom(), zoomed);
}

TEST_F(PicturePanelTest, ZoomsWithKeysAndControlWheel) {
    show(picture(1600, 800));
    const double fitted = view().zoom();
    QTest::keyClick(&view(), Qt::Key_Plus);
    EXPECT_GT(view().zoom(), fitted);
    QTest::keyClick(&view(), Qt::Key_Minus);
    QTest::keyClick(&view(), Qt::Key_Minus);
    EXPECT_LT(view().zoom(), fitted);
    QTest::keyClick(&view(), Qt::Key_0);
    EXPECT_DOUBLE_EQ(view().zoom(), fitted);

    const QPointF centre = QRectF(view().viewport()->rect()).center();
    QWheelEvent wheel(centre, view().viewport()->mapToGlobal(centre), QPoint(), QPoint(0, 120),
                      Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view().viewport(), &wheel);
    EXPECT_GT(view().zoom(), fitted);
}

TEST_F(PicturePanelTest, DoneAndEscapeFinishWithoutClosing) {
    QSignalSpy finished(&panel, &PicturePanel::finished);
    show(picture(10, 10));
    QTest::mouseClick(panel.findChild<QPushButton*>(QStringLiteral("doneButton")), Qt::LeftButton);
    QTest::keyClick(&view(), Qt::Key_Escape);
    EXPECT_EQ(finished.count(), 2);
    EXPECT_TRUE(panel.isVisible());
}

TEST_F(PicturePanelTest, PictureThatFailedToDecodeShowsThePlaceholder) {
    show(QImage());
    EXPECT_FALSE(panel.grab().isNull());
    view().zoomIn();
    EXPECT_FALSE(panel.grab().isNull());
}

long peakResidentKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// A 20000 x 20000 picture: the panel shares the caller's pixels and paints from them, so drawing
// it fitted and zoomed never makes a second full-size copy (32-bit, that would be 1.6 GB).
TEST_F(PicturePanelTest, HugePictureIsShownScaledWithoutASecondCopy) {
    QImage huge(20000, 20000, QImage::Format_Mono);
    huge.setColorTable({qRgb(255, 255, 255), qRgb(0, 0, 0)});
    huge.fill(1);
    show(huge);
    EXPECT_LT(view().zoom(), 0.05);
    const long before = peakResidentKilobytes();
    EXPECT_FALSE(panel.grab().isNull());
    view().setZoom(2.0);
    EXPECT_FALSE(panel.grab().isNull());
    EXPECT_EQ(panel.image().constBits(), huge.constBits());
    EXPECT_LT(peakResidentKilobytes() - before, 200 * 1024);
}

} // namespace
} // namespace quillery
