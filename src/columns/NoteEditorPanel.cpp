#include "columns/NoteEditorPanel.h"

#include "columns/ColumnStyle.h"
#include "columns/NoteTextEdit.h"
#include "markdown/Styles.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>

namespace quillery {

namespace {

constexpr double kEditorFontSize = 16;

} // namespace

NoteEditorPanel::NoteEditorPanel(QWidget* parent)
    : QWidget(parent)
    , m_textEdit(new NoteTextEdit(this))
    , m_doneButton(new QPushButton(tr("Done"), this))
    , m_cancelButton(new QPushButton(tr("Cancel"), this)) {
    setObjectName(QStringLiteral("NoteEditorPanel"));
    setAccessibleName(tr("Note editor"));
    m_textEdit->setObjectName(QStringLiteral("textEdit"));
    m_textEdit->setAccessibleName(tr("Note text"));
    m_textEdit->setFont(columnstyle::font({fontfamilies::monospace(), kEditorFontSize}));
    m_textEdit->setTabChangesFocus(true);
    // A word wider than the editor (an address, a pasted key, a note without spaces) breaks
    // where the line ends instead of running on as one line the whole word long.
    m_textEdit->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_doneButton->setObjectName(QStringLiteral("doneButton"));
    m_doneButton->setToolTip(tr("Keep the text (Ctrl+Return)"));
    m_doneButton->setDefault(true);
    m_cancelButton->setObjectName(QStringLiteral("cancelButton"));
    m_cancelButton->setToolTip(tr("Leave the note as it was (Escape)"));

    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(m_doneButton, QDialogButtonBox::AcceptRole);
    buttons->addButton(m_cancelButton, QDialogButtonBox::RejectRole);
    connect(m_doneButton, &QPushButton::clicked, this, &NoteEditorPanel::finish);
    connect(m_cancelButton, &QPushButton::clicked, this, &NoteEditorPanel::cancel);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_textEdit, 1);
    layout->addWidget(buttons);

    for (const QKeySequence& keys :
         {QKeySequence(Qt::CTRL | Qt::Key_Return), QKeySequence(Qt::CTRL | Qt::Key_Enter)}) {
        auto* done = new QShortcut(keys, this);
        done->setContext(Qt::WidgetWithChildrenShortcut);
        connect(done, &QShortcut::activated, this, &NoteEditorPanel::finish);
    }
    auto* cancel = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    cancel->setContext(Qt::WidgetWithChildrenShortcut);
    connect(cancel, &QShortcut::activated, this, &NoteEditorPanel::cancel);
}

void NoteEditorPanel::setNote(NodePtr note) {
    m_note = std::move(note);
    updateUI();
}

void NoteEditorPanel::updateUI() {
    if (!m_note)
        return;
    // Setting the text starts a fresh typing history: loading the note is not an undo step.
    m_textEdit->setNoteText(QString::fromStdString(m_note->text()));
    m_textEdit->moveCursor(QTextCursor::End);
}

void NoteEditorPanel::finish() {
    if (!m_note)
        return;
    // A copy: the receiver may let go of the panel, and with it of the note.
    const NodePtr node = m_note;
    emit finished(node, text());
}

std::string NoteEditorPanel::text() const {
    return m_textEdit->noteText().toStdString();
}

void NoteEditorPanel::cancel() {
    if (!m_note)
        return;
    const NodePtr node = m_note;
    emit cancelled(node);
}

void NoteEditorPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // After the show has finished, so that the window is ready to take the focus.
    QTimer::singleShot(0, m_textEdit, qOverload<>(&QWidget::setFocus));
}

} // namespace quillery
