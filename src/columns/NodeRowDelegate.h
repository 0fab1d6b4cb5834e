#pragma once

#include <QStyledItemDelegate>

#include <memory>

namespace quillery {

class Document;
class Identifier;
class NotebookNode;

// Draws a column's rows and gives their heights. A text row shows the note's styled text and
// the count of its children; a picture row shows the picture at the column's width; the
// selected row gets an outline and a bar at its left edge.
//
// Heights: a text row is its text laid out 16 narrower than the column, at most 512 high, plus
// 24. Laying text out is the costly part of a column, so heights are measured lazily and cached
// per note for the current width. A long column gets a cheap estimate for rows never drawn;
// drawing a row measures it as a side effect, and a row that turns out taller or shorter than
// its estimate asks the list to lay out again. Short columns are measured exactly up front.
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
    // Forgets the height of a note whose text changed.
    void invalidate(const Identifier& node);

    // The exact height of a row showing the node (measured and cached).
    int rowHeight(const NotebookNode& node) const;
    // A cheap guess for a text row never measured; exact for picture rows.
    int estimatedRowHeight(const NotebookNode& node) const;
    // Number of text rows measured at the current width (for tests and benchmarks).
    std::size_t measuredRowCount() const;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    int pictureRowHeight(const NotebookNode& node) const;
    int textWidth() const;
    void paintPicture(QPainter& painter, const QRect& rect, const NotebookNode& node,
                      bool enabled) const;
    void paintText(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                   const NotebookNode& node, bool enabled, bool selected) const;
    void paintChildCount(QPainter& painter, const QStyleOptionViewItem& option, std::size_t count,
                         bool dimmed) const;
    void paintSelection(QPainter& painter, const QStyleOptionViewItem& option) const;
    void remember(const QModelIndex& index, const NotebookNode& node, int height,
                  int shownHeight) const;

    const Document* m_document;
    int m_columnWidth = 300;
    struct Heights;
    std::unique_ptr<Heights> m_heights; // measured text rows at the current width
    mutable bool m_relayoutPending = false;
};

} // namespace quillery
