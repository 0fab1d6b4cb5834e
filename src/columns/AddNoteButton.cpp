#include "columns/AddNoteButton.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>

namespace quillery {

namespace {

// Presents the button to assistive technology as an ordinary push button.
class AccessibleAddNoteButton : public QAccessibleWidget {
public:
    explicit AccessibleAddNoteButton(AddNoteButton* button)
        : QAccessibleWidget(button, QAccessible::Button) {}

    QString text(QAccessible::Text t) const override {
        if (t == QAccessible::Name && !widget()->accessibleName().isEmpty())
            return widget()->accessibleName();
        if (t == QAccessible::Name)
            return static_cast<AddNoteButton*>(widget())->title();
        return QAccessibleWidget::text(t);
    }

    QStringList actionNames() const override {
        return QStringList{pressAction()} + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& actionName) override {
        if (actionName == pressAction())
            static_cast<AddNoteButton*>(widget())->click();
        else
            QAccessibleWidget::doAction(actionName);
    }
};

QAccessibleInterface* accessibleFactory(const QString&, QObject* object) {
    if (auto* button = qobject_cast<AddNoteButton*>(object))
        return new AccessibleAddNoteButton(button);
    return nullptr;
}

// The design's 16-point system font dwarfs everything else on a Linux desktop, whose
// application font is usually 9 to 11 points; a fifth larger than that font reads as the same
// emphasis.
QFont titleFont() {
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * 1.2);
    return font;
}

} // namespace

AddNoteButton::AddNoteButton(QWidget* parent)
    : QWidget(parent) {
    static const bool factoryInstalled = [] {
        QAccessible::installFactory(accessibleFactory);
        return true;
    }();
    Q_UNUSED(factoryInstalled)
    setObjectName(QStringLiteral("addButton"));
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setFont(titleFont());
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void AddNoteButton::setTitle(const QString& title) {
    m_title = title;
    setAccessibleName(title);
    updateGeometry();
    update();
}

AddNoteButtonState AddNoteButton::state() const {
    return {isEnabled(), m_mouseDown, m_mouseInBounds, hasFocus()};
}

AddNoteButtonLook AddNoteButton::look() const {
    return addNoteButtonLook(state(), AddNoteButtonColors::forPalette(palette()));
}

QSize AddNoteButton::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance(m_title) + 2 * metrics.height(), metrics.height() * 2};
}

QSize AddNoteButton::minimumSizeHint() const {
    return {fontMetrics().height() * 2, fontMetrics().height() * 2};
}

void AddNoteButton::click() {
    emit clicked();
}

void AddNoteButton::paintEvent(QPaintEvent*) {
    const AddNoteButtonLook colors = look();
    QPainter painter(this);
    painter.fillRect(rect(), colors.background);
    // A 2-pixel pen centred on the edge: the outer half is clipped away, leaving a 1-pixel frame.
    painter.setPen(QPen(colors.border, 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(0, 0, width(), height()));
    painter.setPen(colors.title);
    // One pixel above the exact centre, as the design places the title.
    painter.drawText(rect().translated(0, -1), Qt::AlignCenter, m_title);
}

void AddNoteButton::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    m_mouseDown = true;
    m_mouseInBounds = true;
    update();
}

void AddNoteButton::mouseMoveEvent(QMouseEvent* event) {
    setMouseInBounds(rect().contains(event->position().toPoint()));
}

void AddNoteButton::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !m_mouseDown) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    const bool inside = rect().contains(event->position().toPoint());
    m_mouseDown = false;
    update();
    if (isEnabled() && inside)
        emit clicked();
}

void AddNoteButton::enterEvent(QEnterEvent*) {
    setMouseInBounds(true);
}

void AddNoteButton::leaveEvent(QEvent*) {
    setMouseInBounds(false);
}

void AddNoteButton::keyPressEvent(QKeyEvent* event) {
    // The keypad's Enter is not a press: like every other key it goes on to the column.
    if ((event->key() == Qt::Key_Space || event->key() == Qt::Key_Return) &&
        (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
        event->accept();
        if (!event->isAutoRepeat())
            emit clicked();
        return;
    }
    QWidget::keyPressEvent(event);
}

void AddNoteButton::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    update();
}

void AddNoteButton::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    // Redrawn a turn later, once the focus has settled on its new owner.
    QTimer::singleShot(0, this, qOverload<>(&QWidget::update));
}

void AddNoteButton::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::EnabledChange || event->type() == QEvent::PaletteChange)
        update();
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        m_mouseDown = false;
}

void AddNoteButton::setMouseInBounds(bool inBounds) {
    if (inBounds == m_mouseInBounds)
        return;
    m_mouseInBounds = inBounds;
    update();
}

} // namespace quillery
