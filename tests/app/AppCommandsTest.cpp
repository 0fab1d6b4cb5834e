#include "app/AppCommands.h"

#include "OpenedUrls.h"
#include "QtPrinters.h"
#include "app/AboutDialog.h"
#include "app/AppInfo.h"

#include <QApplication>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>
#include <vector>

namespace quillery {
namespace {

TEST(FeedbackAddress, NamesThePlatformVersionAndBuild) {
    const QUrl url(AppInfo::feedbackMailAddress(QStringLiteral("feedback@example.org"),
                                                QStringLiteral("2.0"), QStringLiteral("100")));
    EXPECT_EQ(url.toString(QUrl::FullyEncoded),
              QStringLiteral("mailto:feedback@example.org?subject=Feedback%20on%20Quillery%20Linux"
                             "%202.0%20(100)"));
}

class AppCommandsTest : public ::testing::Test {
protected:
    AppCommandsTest() { testing::openedUrls().clear(); }

    AppCommands commands;
};

// Each command opens its address; where no program takes it, the user hears what to do instead.
TEST_F(AppCommandsTest, HelpFeedbackAndTheAboutLinksOpenTheirAddressesOrSayWhyNot) {
    std::vector<QString> failures;
    QObject::connect(&commands, &AppCommands::addressNotOpened,
                     [&](QWidget*, const QString& text, const QString& details) {
                         failures.push_back(text + QLatin1Char(' ') + details);
                     });
    commands.showAbout(nullptr);
    AboutDialog* about = nullptr;
    for (QWidget* window : QApplication::topLevelWidgets())
        about = about ? about : qobject_cast<AboutDialog*>(window);
    ASSERT_NE(about, nullptr);
    const auto openAll = [&] {
        commands.showHelp();
        commands.sendFeedback();
        commands.followOnSocialNetwork();
        for (const char* link : {"siteLinkButton", "socialLinkButton"}) {
            QTest::mouseClick(about->findChild<QPushButton*>(QString::fromLatin1(link)),
                              Qt::LeftButton);
        }
    };
    openAll();
    EXPECT_EQ(testing::openedUrls(),
              (std::vector<QUrl>{
                  AppInfo::helpUrl(),
                  QUrl(AppInfo::feedbackMailAddress(AppInfo::feedbackEmail(), AppInfo::version(),
                                                    AppInfo::buildNumber())),
                  AppInfo::socialUrl(), AppInfo::siteUrl(), AppInfo::socialUrl()}));
    EXPECT_TRUE(failures.empty());

    {
        const testing::NoProgramOpensUrls noPrograms;
        openAll();
    }
    ASSERT_EQ(failures.size(), 5u);
    EXPECT_TRUE(failures[0].contains(AppInfo::helpUrl().toDisplayString()))
        << failures[0].toStdString();
    EXPECT_TRUE(failures[1].contains(AppInfo::feedbackEmail())) << failures[1].toStdString();
    EXPECT_TRUE(failures[3].contains(AppInfo::siteUrl().toDisplayString()))
        << failures[3].toStdString();
    about->close();
}

} // namespace
} // namespace quillery
