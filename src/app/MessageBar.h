#pragma once

#include <QFrame>

class QLabel;

namespace quillery {

// A bar across the top of a window for news the user should see but need not answer at once
// (a journal that arrived damaged). It stays until the user closes it or the news is over.
class MessageBar : public QFrame {
    Q_OBJECT

public:
    explicit MessageBar(QWidget* parent = nullptr);

    QString text() const;
    // Shows the bar with the text, replacing what it said.
    void showMessage(const QString& text);

private:
    QLabel* m_text;
};

} // namespace quillery
