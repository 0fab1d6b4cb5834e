#include "app/AboutDialog.h"

#include "app/AppInfo.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace quillery {

namespace {

QPushButton* makeLinkButton(QWidget* parent, const QString& text, const QString& objectName) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(objectName);
    button->setFlat(true);
    button->setCursor(Qt::PointingHandCursor);
    button->setAutoDefault(false);
    return button;
}

void styleLink(QPushButton& button, bool underlined, const QColor& link) {
    QFont font = button.font();
    font.setUnderline(underlined);
    button.setFont(font);
    QPalette palette = button.palette();
    palette.setColor(QPalette::ButtonText, link);
    palette.setColor(QPalette::WindowText, link);
    button.setPalette(palette);
}

} // namespace

AboutDialog::AboutDialog(QWidget* parent)
    : QDialog(parent)
    , m_versionLabel(new QLabel(this))
    , m_siteLinkButton(
          makeLinkButton(this, AppInfo::siteUrl().toString(), QStringLiteral("siteLinkButton")))
    , m_socialLinkButton(makeLinkButton(this, QStringLiteral("@") + AppInfo::socialHandle(),
                                        QStringLiteral("socialLinkButton"))) {
    setObjectName(QStringLiteral("AboutDialog"));
    setWindowTitle(tr("About Quillery"));

    auto* icon = new QLabel(this);
    const int iconSize = style()->pixelMetric(QStyle::PM_LargeIconSize) * 2;
    icon->setPixmap(QApplication::windowIcon().pixmap(iconSize));
    icon->setAlignment(Qt::AlignCenter);

    auto* name = new QLabel(QStringLiteral("Quillery"), this);
    QFont nameFont = name->font();
    nameFont.setBold(true);
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.5);
    name->setFont(nameFont);
    name->setAlignment(Qt::AlignCenter);

    m_versionLabel->setObjectName(QStringLiteral("versionLabel"));
    m_versionLabel->setText(AppInfo::versionText(AppInfo::version(), AppInfo::buildNumber()));
    m_versionLabel->setAlignment(Qt::AlignCenter);
    m_versionLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);

    m_siteLinkButton->setAccessibleName(tr("Open the Quillery web site"));
    m_socialLinkButton->setAccessibleName(tr("Open Quillery's social-network page"));
    styleLinks();

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(icon);
    layout->addWidget(name);
    layout->addWidget(m_versionLabel);
    layout->addWidget(m_siteLinkButton, 0, Qt::AlignHCenter);
    layout->addWidget(m_socialLinkButton, 0, Qt::AlignHCenter);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    // A window manager cuts a title longer than the window can show beside its buttons; its
    // title font is often bold.
    QFont titleFont = font();
    titleFont.setBold(true);
    layout->addStrut(QFontMetrics(titleFont).horizontalAdvance(windowTitle()) +
                     4 * style()->pixelMetric(QStyle::PM_TitleBarHeight));

    connect(m_siteLinkButton, &QPushButton::clicked, this, &AboutDialog::openSite);
    connect(m_socialLinkButton, &QPushButton::clicked, this, &AboutDialog::openSocialPage);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void AboutDialog::openSite() {
    emit addressChosen(AppInfo::siteUrl());
}

void AboutDialog::openSocialPage() {
    emit addressChosen(AppInfo::socialUrl());
}

void AboutDialog::styleLinks() {
    // The panel's palette, which is up to date before its children's when it changes.
    const QColor link = palette().color(QPalette::Link);
    styleLink(*m_siteLinkButton, true, link);
    styleLink(*m_socialLinkButton, false, link);
}

void AboutDialog::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange)
        styleLinks();
}

} // namespace quillery
