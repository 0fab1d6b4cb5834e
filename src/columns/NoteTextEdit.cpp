#include "columns/NoteTextEdit.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QTextBlock>

namespace quillery {

namespace {

// Set on the format of a block that continues the paragraph of the block above.
constexpr int kContinuesAbove = QTextFormat::UserProperty + 1;

bool continuesAbove(const QTextBlock& block) {
    return block.previous().isValid() && block.blockFormat().boolProperty(kContinuesAbove);
}

// Where a block of a paragraph ends: after a space or tab in the second half of a piece when there
// is one, so that the visible break falls where the line could have wrapped; never inside a
// surrogate pair.
qsizetype pieceEnd(const QString& paragraph, qsizetype from) {
    const qsizetype limit = from + NoteTextEdit::kPiece;
    if (paragraph.size() <= NoteTextEdit::kLongParagraph || limit >= paragraph.size())
        return paragraph.size();
    for (qsizetype at = limit; at > from + NoteTextEdit::kPiece / 2; --at)
        if (paragraph[at - 1] == u' ' || paragraph[at - 1] == u'\t')
            return at;
    return paragraph[limit].isLowSurrogate() ? limit - 1 : limit;
}

// Inserts text whose line feeds start paragraphs of their own, whatever the block it goes into.
void insertParagraphs(QTextCursor& cursor, const QString& text) {
    const QStringList lines = text.split(u'\n');
    cursor.beginEditBlock();
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (i > 0)
            cursor.insertBlock(QTextBlockFormat());
        cursor.insertText(lines[i]);
    }
    cursor.endEditBlock();
}

} // namespace

NoteTextEdit::NoteTextEdit(QWidget* parent)
    : QPlainTextEdit(parent) {
}

void NoteTextEdit::setNoteText(const QString& text) {
    QTextDocument& document = *this->document();
    document.setUndoRedoEnabled(false);
    clear();
    QTextBlockFormat continuation;
    continuation.setProperty(kContinuesAbove, true);
    QTextCursor cursor(&document);
    bool first = true;
    for (const QString& paragraph : text.split(u'\n')) {
        if (!first)
            cursor.insertBlock(QTextBlockFormat());
        first = false;
        qsizetype from = 0;
        do {
            const qsizetype to = pieceEnd(paragraph, from);
            if (from > 0)
                cursor.insertBlock(continuation);
            cursor.insertText(paragraph.mid(from, to - from));
            from = to;
        } while (from < paragraph.size());
    }
    document.setUndoRedoEnabled(true);
    document.setModified(false);
}

QString NoteTextEdit::noteText() const {
    return textBetween(0, document()->characterCount() - 1);
}

QString NoteTextEdit::textBetween(int from, int to) const {
    QString text;
    for (QTextBlock block = document()->findBlock(from); block.isValid() && block.position() <= to;
         block = block.next()) {
        if (block.position() > from && !continuesAbove(block))
            text += u'\n';
        const int start = std::max(from - block.position(), 0);
        const int end = std::min(to - block.position(), block.length() - 1);
        text += block.text().mid(start, end - start);
    }
    return text;
}

void NoteTextEdit::keyPressEvent(QKeyEvent* event) {
    QTextCursor cursor = textCursor();
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool plain = modifiers == Qt::NoModifier;
    if (plain && !cursor.hasSelection() && event->key() == Qt::Key_Backspace &&
        cursor.atBlockStart() && continuesAbove(cursor.block())) {
        while (cursor.atBlockStart() && continuesAbove(cursor.block()))
            cursor.movePosition(QTextCursor::PreviousCharacter);
        cursor.deletePreviousChar();
        setTextCursor(cursor);
        return;
    }
    if (plain && !cursor.hasSelection() && event->key() == Qt::Key_Delete && cursor.atBlockEnd() &&
        continuesAbove(cursor.block().next())) {
        while (cursor.atBlockEnd() && continuesAbove(cursor.block().next()))
            cursor.movePosition(QTextCursor::NextCharacter);
        cursor.deleteChar();
        setTextCursor(cursor);
        return;
    }
    if (plain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        cursor.insertBlock(QTextBlockFormat());
        setTextCursor(cursor);
        ensureCursorVisible();
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

bool NoteTextEdit::canInsertFromMimeData(const QMimeData* source) const {
    return source->hasText();
}

void NoteTextEdit::insertFromMimeData(const QMimeData* source) {
    QTextCursor cursor = textCursor();
    insertParagraphs(cursor, source->text());
    setTextCursor(cursor);
    ensureCursorVisible();
}

QMimeData* NoteTextEdit::createMimeDataFromSelection() const {
    const QTextCursor cursor = textCursor();
    auto* selected = new QMimeData;
    selected->setText(textBetween(cursor.selectionStart(), cursor.selectionEnd()));
    return selected;
}

} // namespace quillery
