#include "OpenedUrls.h"
#include "QtPrinters.h"
#include "app/AboutDialog.h"
#include "app/AppCommands.h"
#include "app/AppInfo.h"
#include "columns/NoteColumn.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QUrlQuery>

#include <gtest/gtest.h>
#include <vector>

namespace quillery {
namespace {

TEST(FeedbackAddress, NamesThePlatformVersionAndBuild) {
    const QString address = AppInfo::feedbackMailAddress(
        QStringLiteral("feedback@example.org"), QStringLiteral("2.0"), QStringLiteral("100"));
    EXPECT_EQ(address, QStringLiteral("mailto:feedback@example.org?subject=Feedback%20on%20Quillery"
                                      "%20Linux%202.0%20(100)"));
    const QUrl url(address);
    ASSERT_TRUE(url.isValid());
    EXPECT_EQ(url.scheme(), QStringLiteral("mailto"));
    EXPECT_EQ(url.path(), QStringLiteral("feedback@example.org"));
    EXPECT_EQ(QUrlQuery(url).queryItemValue(QStringLiteral("subject"), QUrl::FullyDecoded),
              QStringLiteral("Feedback on Quillery Linux 2.0 (100)"));
}

TEST(VersionText, ShowsVersionAndBuild) {
    EXPECT_EQ(AppInfo::versionText(QStringLiteral("2.0"), QStringLiteral("100")),
              QStringLiteral("Version 2.0 (100)"));
}

class AppCommandsTest : public ::testing::Test {
protected:
    AppCommandsTest() {
        testing::openedUrls().clear();
        QObject::connect(&delegate, &AppCommands::newNotebookRequested, [this] { ++newDocuments; });
    }

    AppCommands delegate;
    int newDocuments = 0;
};

TEST_F(AppCommandsTest, EachActionOpensItsAddress) {
    delegate.showHelp();
    delegate.sendFeedback();
    delegate.followOnSocialNetwork();
    const std::vector<QUrl>& urls = testing::openedUrls();
    ASSERT_EQ(urls.size(), 3u);
    EXPECT_EQ(urls[0], AppInfo::helpUrl());
    EXPECT_EQ(urls[1].toString(QUrl::FullyEncoded),
              AppInfo::feedbackMailAddress(AppInfo::feedbackEmail(), AppInfo::version(),
                                           AppInfo::buildNumber()));
    EXPECT_EQ(urls[2], AppInfo::socialUrl());
}

TEST_F(AppCommandsTest, AddNoteWithoutAFocusedColumnMakesANewNotebook) {
    QWidget elsewhere;
    elsewhere.setFocusPolicy(Qt::StrongFocus);
    elsewhere.show();
    elsewhere.activateWindow();
    elsewhere.setFocus();
    delegate.addNote();
    EXPECT_EQ(newDocuments, 1);
}

TEST_F(AppCommandsTest, AddNoteWithAFocusedColumnIsTheColumns) {
    InMemoryPreferences preferences;
    Document document(preferences);
    NoteColumn column(&document);
    column.setRepresentedNode(document.rootNode());
    column.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&column));
    column.activateWindow();
    column.takeFocus();
    QCoreApplication::processEvents();
    ASSERT_EQ(NoteColumn::containing(QApplication::focusWidget()), &column);
    delegate.addNote();
    EXPECT_EQ(newDocuments, 0);
}

class AboutPanel : public ::testing::Test {
protected:
    AboutPanel() { testing::openedUrls().clear(); }

    static QColor textColour(const QPushButton& button) {
        return button.palette().color(QPalette::ButtonText);
    }

    AboutDialog panel;
};

TEST_F(AboutPanel, ShowsTheVersionLine) {
    EXPECT_EQ(panel.findChild<QLabel*>(QStringLiteral("versionLabel"))->text(),
              AppInfo::versionText(AppInfo::version(), AppInfo::buildNumber()));
}

TEST_F(AboutPanel, SiteLinkIsUnderlinedInTheLinkColour) {
    const QPushButton& site = *panel.findChild<QPushButton*>(QStringLiteral("siteLinkButton"));
    EXPECT_EQ(site.text(), AppInfo::siteUrl().toString());
    EXPECT_TRUE(site.font().underline());
    EXPECT_EQ(textColour(site), panel.palette().color(QPalette::Link));
}

TEST_F(AboutPanel, HandleLinkIsInTheLinkColourWithoutUnderline) {
    const QPushButton& social = *panel.findChild<QPushButton*>(QStringLiteral("socialLinkButton"));
    EXPECT_EQ(social.text(), QStringLiteral("@") + AppInfo::socialHandle());
    EXPECT_FALSE(social.font().underline());
    EXPECT_EQ(textColour(social), panel.palette().color(QPalette::Link));
}

TEST_F(AboutPanel, LinksFollowAPaletteChange) {
    QPalette dark = panel.palette();
    dark.setColor(QPalette::Link, QColor(0x7a, 0xb8, 0xff));
    panel.setPalette(dark);
    EXPECT_EQ(textColour(*panel.findChild<QPushButton*>(QStringLiteral("siteLinkButton"))),
              QColor(0x7a, 0xb8, 0xff));
    EXPECT_EQ(textColour(*panel.findChild<QPushButton*>(QStringLiteral("socialLinkButton"))),
              QColor(0x7a, 0xb8, 0xff));
}

TEST_F(AboutPanel, LinksOpenTheSiteAndTheSocialPage) {
    QTest::mouseClick(panel.findChild<QPushButton*>(QStringLiteral("siteLinkButton")),
                      Qt::LeftButton);
    QTest::mouseClick(panel.findChild<QPushButton*>(QStringLiteral("socialLinkButton")),
                      Qt::LeftButton);
    EXPECT_EQ(testing::openedUrls(), (std::vector<QUrl>{AppInfo::siteUrl(), AppInfo::socialUrl()}));
}

} // namespace
} // namespace quillery
