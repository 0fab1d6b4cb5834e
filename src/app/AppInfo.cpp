#include "app/AppInfo.h"

#include "app/AppConfig.h"

#include <QCoreApplication>

namespace quillery {

QString AppInfo::version() {
    return QString::fromUtf8(config::kVersion);
}

QString AppInfo::buildNumber() {
    return QString::fromUtf8(config::kBuildNumber);
}

QUrl AppInfo::helpUrl() {
    return QUrl(QString::fromUtf8(config::kHelpUrl));
}

QUrl AppInfo::siteUrl() {
    return QUrl(QString::fromUtf8(config::kSiteUrl));
}

QUrl AppInfo::socialUrl() {
    return QUrl(QString::fromUtf8(config::kSocialUrl));
}

QString AppInfo::socialHandle() {
    return QString::fromUtf8(config::kSocialHandle);
}

QString AppInfo::feedbackEmail() {
    return QString::fromUtf8(config::kFeedbackEmail);
}

QString AppInfo::feedbackMailAddress(const QString& email, const QString& version,
                                     const QString& build) {
    return QStringLiteral("mailto:") + email + QStringLiteral("?subject=") +
           QStringLiteral("Feedback%20on%20Quillery%20Linux%20") + version +
           QStringLiteral("%20(") + build + QStringLiteral(")");
}

QString AppInfo::versionText(const QString& version, const QString& build) {
    return QCoreApplication::translate("AppInfo", "Version %1 (%2)").arg(version, build);
}

} // namespace quillery
