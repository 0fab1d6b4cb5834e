#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace quillery {

// The About panel: the version line, the product's site and the maker's social-network handle,
// both as links. It is wide enough for its whole title in a window manager's title bar.
class AboutDialog : public QDialog {
    Q_OBJECT

public:
    explicit AboutDialog(QWidget* parent = nullptr);

    void openSite();
    void openSocialPage();

signals:
    // A link was chosen; the receiver opens the address.
    void addressChosen(const QUrl& address);

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
