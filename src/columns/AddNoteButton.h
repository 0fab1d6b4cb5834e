#pragma once

#include "columns/AddNoteButtonLook.h"

#include <QWidget>

namespace quillery {

// The flat, custom-drawn add button of a column: a filled rectangle with a thin frame and a
// centred title, coloured by hover, press, focus and enabled state. Mouse clicks, and Space or
// Return while it has the keyboard focus, press it.
class AddNoteButton : public QWidget {
    Q_OBJECT

public:
    explicit AddNoteButton(QWidget* parent = nullptr);

    QString title() const { return m_title; }
    // Also the accessible name.
    void setTitle(const QString& title);

    AddNoteButtonState state() const;
    AddNoteButtonLook look() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public slots:
    // Presses the button as Space would (used by assistive technology too).
    void click();

signals:
    void clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void setMouseInBounds(bool inBounds);

    QString m_title;
    bool m_mouseDown = false;
    bool m_mouseInBounds = false;
};

} // namespace quillery
