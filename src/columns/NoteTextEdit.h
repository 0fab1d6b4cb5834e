#pragma once

#include <QPlainTextEdit>

namespace quillery {

// The text field of the note editor. A paragraph is laid out again as a whole on every key
// typed in it, so one longer than kLongParagraph characters (a pasted log, a note without line
// breaks) is shown as blocks of at most kPiece characters that continue one another: each key
// then costs one block's layout, whatever the note's size. Where one block continues another
// nothing is in the note; Backspace and Delete step over that place, and Return and pasted line
// breaks start real ones.
class NoteTextEdit : public QPlainTextEdit {
    Q_OBJECT

public:
    static constexpr int kLongParagraph = 10'000;
    static constexpr int kPiece = 1000;

    explicit NoteTextEdit(QWidget* parent = nullptr);

    // Replaces the text and starts a fresh typing history.
    void setNoteText(const QString& text);
    QString noteText() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;
    QMimeData* createMimeDataFromSelection() const override;

private:
    QString textBetween(int from, int to) const;
};

} // namespace quillery
