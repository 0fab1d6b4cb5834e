#include "columns/EditNodeViewController.h"

#include "columns/ColumnStyle.h"
#include "markdown/Styles.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>

namespace quillery {

namespace {

constexpr double kEditorFontSize = 16;

} // namespace

EditNodeViewController::EditNodeViewController(QWidget* parent)
    : QWidget(parent)
    , m_textView(new QPlainTextEdit(this))
    , m_doneButton(new QPushButton(tr("Done"), this))
    , m_cancelButton(new QPushButton(tr("Cancel"), this)) {
    setObjectName(QStringLiteral("EditNodeViewController"));
    setAccessibleName(tr("Note editor"));
    m_textView->setObjectName(QStringLiteral("textView"));
    m_textView->setAccessibleName(tr("Note text"));
    m_textView->setFont(columnstyle::font({fontfamilies::monospace(), kEditorFontSize}));
    m_textView->setTabChangesFocus(true);
    m_doneButton->setObjectName(QStringLiteral("doneButton"));
    m_doneButton->setToolTip(tr("Keep the text (Ctrl+Return)"));
    m_doneButton->setDefault(true);
    m_cancelButton->setObjectName(QStringLiteral("cancelButton"));
    m_cancelButton->setToolTip(tr("Leave the note as it was (Escape)"));

    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(m_doneButton, QDialogButtonBox::AcceptRole);
    buttons->addButton(m_cancelButton, QDialogButtonBox::RejectRole);
    connect(m_doneButton, &QPushButton::clicked, this, &EditNodeViewController::didTapDone);
    connect(m_cancelButton, &QPushButton::clicked, this, &EditNodeViewController::didTapCancel);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_textView, 1);
    layout->addWidget(buttons);

    for (const QKeySequence& keys :
         {QKeySequence(Qt::CTRL | Qt::Key_Return), QKeySequence(Qt::CTRL | Qt::Key_Enter)}) {
        auto* done = new QShortcut(keys, this);
        done->setContext(Qt::WidgetWithChildrenShortcut);
        connect(done, &QShortcut::activated, this, &EditNodeViewController::didTapDone);
    }
    auto* cancel = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    cancel->setContext(Qt::WidgetWithChildrenShortcut);
    connect(cancel, &QShortcut::activated, this, &EditNodeViewController::didTapCancel);
}

void EditNodeViewController::setRepresentedNode(NodePtr node) {
    m_representedNode = std::move(node);
    updateUI();
}

void EditNodeViewController::updateUI() {
    if (!m_representedNode)
        return;
    // Setting the text starts a fresh typing history: loading the note is not an undo step.
    m_textView->setPlainText(QString::fromStdString(m_representedNode->text()));
    m_textView->moveCursor(QTextCursor::End);
}

void EditNodeViewController::didTapDone() {
    if (!m_representedNode)
        return;
    // A copy: the receiver may let go of the panel, and with it of the note.
    const NodePtr node = m_representedNode;
    emit finished(node, m_textView->toPlainText().toStdString());
}

void EditNodeViewController::didTapCancel() {
    if (!m_representedNode)
        return;
    const NodePtr node = m_representedNode;
    emit cancelled(node);
}

void EditNodeViewController::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // After the show has finished, so that the window is ready to take the focus.
    QTimer::singleShot(0, m_textView, qOverload<>(&QWidget::setFocus));
}

} // namespace quillery
