#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace quillery {

// The About panel: the version line, the product's site and the maker's social-network handle,
// both as links that open in the default browser.
class AboutDialog : public QDialog {
    Q_OBJECT

public:
    explicit AboutDialog(QWidget* parent = nullptr);

    QLabel* versionLabel() const { return m_versionLabel; }
    QPushButton* siteLinkButton() const { return m_siteLinkButton; }
    QPushButton* socialLinkButton() const { return m_socialLinkButton; }

    void openSite();
    void openSocialPage();

protected:
    void changeEvent(QEvent* event) override;

private:
    // The links take the palette's link colour, so they follow light and dark themes.
    void styleLinks();

    QLabel* m_versionLabel;
    QPushButton* m_siteLinkButton;
    QPushButton* m_socialLinkButton;
};

} // namespace quillery
