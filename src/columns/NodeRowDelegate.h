#pragma once

#include <QStyledItemDelegate>

#include <memory>

namespace quillery {

class Document;
class Identifier;
class NotebookNode;

// Draws a column's rows and gives their heights. A text row shows the note's styled text and,
// beside its first line, the count of its children, for which its text leaves room; a note too
// long for its row fades out at the bottom. A picture row shows the picture at the column's
// width. The selected row gets an outline and a bar at its left edge over a light tint: in the
// palette's highlight colour while its list has the keyboard, neutral grey otherwise. The note
// being edited keeps the highlight while its column is dimmed.
//
// Heights: a text row is its text laid out 16 narrower than the column (and narrower by the count
// when it shows one), at most 512 high, plus 24. Laying text out is the costly part of a column, so
// heights are measured lazily and cached per note for the current width. A long column gets a cheap
// estimate for rows never drawn; drawing a row measures it as a side effect, and a row that turns
// out taller or shorter than its estimate asks the list to lay out again. Short columns are
// measured exactly up front.
class NodeRowDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    // Columns with at most this many rows measure every row exactly when laid out.
    static constexpr int kExactMeasureLimit = 1000;
    static constexpr int kTextInset = 8;         // text is laid out 2 × 8 narrower than the row
    static constexpr int kVerticalSpace = 24;    // added to the text's height
    static constexpr int kNoPictureHeight = 192; // a picture row without a picture
    static constexpr int kNoColumnNodeHeight = 32;

    explicit NodeRowDelegate(const Document* document, QObject* parent = nullptr);
    ~NodeRowDelegate() override;

    // A new width makes every cached height stale.
    void setColumnWidth(int width);
    int columnWidth() const { return m_columnWidth; }
    // Forgets the height of a note whose text or number of children changed.
    void invalidate(const Identifier& node);
    // The note whose editor is open, drawn highlighted in its dimmed column; null for none.
    void setEditedNote(const NotebookNode* node) { m_editedNote = node; }

    // The exact height of a row showing the node (measured and cached).
    int rowHeight(const NotebookNode& node) const;
    // A cheap guess for a text row never measured; exact for picture rows.
    int estimatedRowHeight(const NotebookNode& node) const;
    // The column width at which the row's text needs no wrapping; 0 for a picture row, which
    // fits any width.
    int fittingWidth(const NotebookNode& node) const;
    // Number of text rows measured at the current width (for tests and benchmarks).
    std::size_t measuredRowCount() const;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    int pictureRowHeight(const NotebookNode& node) const;
    int textWidth() const;
    // The text's width in a row of the node: narrower by the count of its children, if any.
    int textWidth(const NotebookNode& node) const;
    void paintPicture(QPainter& painter, const QRect& rect, const NotebookNode& node,
                      bool enabled) const;
    void paintText(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                   const NotebookNode& node, bool dimmed, const QColor& background) const;
    void paintChildCount(QPainter& painter, const QStyleOptionViewItem& option, std::size_t count,
                         qreal firstLineHeight, bool dimmed) const;
    void remember(const QModelIndex& index, const NotebookNode& node, int height,
                  int shownHeight) const;

    const Document* m_document;
    const NotebookNode* m_editedNote = nullptr;
    int m_columnWidth = 300;
    struct Heights;
    std::unique_ptr<Heights> m_heights; // measured text rows at the current width
    mutable bool m_relayoutPending = false;
};

} // namespace quillery
