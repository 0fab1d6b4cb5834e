#pragma once

#include <QFrame>
#include <QList>

class QAction;
class QHBoxLayout;
class QLabel;
class QToolButton;

namespace quillery {

// A bar across the top of a window for news the user should see but need not answer at once
// (a journal that arrived damaged, a notebook moved away), with what they can do about it. It stays
// until the user closes it or the news is over.
class MessageBar : public QFrame {
    Q_OBJECT

public:
    explicit MessageBar(QWidget* parent = nullptr);

    QString text() const;
    // Shows the bar with the text and a button for each action (named after the action), replacing
    // what it said and offered. The actions stay the caller's.
    void showMessage(const QString& text, const QList<QAction*>& actions = {});

private:
    QLabel* m_text;
    QHBoxLayout* m_layout;
    QList<QToolButton*> m_buttons;
};

} // namespace quillery
