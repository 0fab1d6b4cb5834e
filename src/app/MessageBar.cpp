#include "app/MessageBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

namespace quillery {

MessageBar::MessageBar(QWidget* parent)
    : QFrame(parent)
    , m_text(new QLabel(this)) {
    setObjectName(QStringLiteral("messageBar"));
    setFrameShape(QFrame::StyledPanel);
    // The tooltip colours stand out from the window in every style without a style sheet.
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    auto* icon = new QLabel(this);
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size, size));
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* close = new QToolButton(this);
    close->setObjectName(QStringLiteral("messageBarClose"));
    close->setAutoRaise(true);
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setToolTip(tr("Close"));
    connect(close, &QToolButton::clicked, this, &QWidget::hide);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(icon, 0, Qt::AlignTop);
    layout->addWidget(m_text, 1);
    layout->addWidget(close, 0, Qt::AlignTop);
    hide();
}

QString MessageBar::text() const {
    return m_text->text();
}

void MessageBar::showMessage(const QString& text) {
    m_text->setText(text);
    show();
}

} // namespace quillery
