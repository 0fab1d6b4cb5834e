#include "app/MessageBar.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

namespace quillery {

MessageBar::MessageBar(QWidget* parent)
    : QFrame(parent)
    , m_text(new QLabel(this))
    , m_layout(new QHBoxLayout(this)) {
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
    m_layout->addWidget(icon, 0, Qt::AlignTop);
    m_layout->addWidget(m_text, 1);
    m_layout->addWidget(close, 0, Qt::AlignTop);
    hide();
}

QString MessageBar::text() const {
    return m_text->text();
}

void MessageBar::showMessage(const QString& text, const QList<QAction*>& actions) {
    m_text->setText(text);
    qDeleteAll(m_buttons);
    m_buttons.clear();
    for (QAction* action : actions) {
        auto* button = new QToolButton(this);
        button->setObjectName(action->objectName());
        button->setDefaultAction(action);
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        // Before the close button, in the order given.
        m_layout->insertWidget(m_layout->count() - 1, button, 0, Qt::AlignTop);
        m_buttons.append(button);
    }
    show();
}

} // namespace quillery
