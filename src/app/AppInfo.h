#pragma once

#include <QString>
#include <QUrl>

namespace quillery {

// The app's version and the maker's endpoints, fixed at build time (CMake cache variables), and
// the texts built from them.
class AppInfo {
public:
    static QString version();
    static QString buildNumber();
    static QUrl helpUrl();
    static QUrl siteUrl();
    static QUrl socialUrl();
    static QString socialHandle();
    static QString feedbackEmail();

    // "mailto:ADDRESS?subject=Feedback%20on%20Quillery%20Linux%20VERSION%20(BUILD)"; the version
    // and build go in as they are.
    static QString feedbackMailAddress(const QString& email, const QString& version,
                                       const QString& build);
    // "Version VERSION (BUILD)".
    static QString versionText(const QString& version, const QString& build);
};

} // namespace quillery
