#pragma once

#include <QUrl>

#include <vector>

namespace quillery::testing {

// Every address that the code under test asked the desktop to open (QDesktopServices::openUrl),
// oldest first. The widget tests' entry point takes the schemes the app opens (files, web pages,
// mail), so no test ever starts a browser, a mail program or a picture viewer.
std::vector<QUrl>& openedUrls();

// While one lives, no program takes any address: QDesktopServices::openUrl fails, as on a desktop
// without a browser, mail program or picture viewer.
class NoProgramOpensUrls {
public:
    NoProgramOpensUrls();
    ~NoProgramOpensUrls();
    NoProgramOpensUrls(const NoProgramOpensUrls&) = delete;
    NoProgramOpensUrls& operator=(const NoProgramOpensUrls&) = delete;
};

} // namespace quillery::testing
