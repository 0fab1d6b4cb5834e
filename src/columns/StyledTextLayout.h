#pragma once

#include <QTextLayout>

#include <string_view>
#include <vector>

class QPainter;
class QPalette;

namespace quillery {

// A note's text with its markdown styling, laid out in lines for one row of a column. The same
// layout measures a row (NodeRowDelegate) and draws it, so the height always fits the drawing.
// Bold and italic runs are drawn bold and italic; the wrapped lines of a list item are indented
// to the item's text, past its bullet or number.
class StyledTextLayout {
public:
    // Everything past this many bytes of a note lies far below the measuring box; it is neither
    // styled nor laid out, which keeps huge notes as cheap as any other.
    static constexpr std::size_t kMaxStyledBytes = 32 * 1024;
    // The measuring box is this high; taller text is cut after the last whole line in the box.
    static constexpr qreal kMaxHeight = 512;

    StyledTextLayout(std::string_view text, const QPalette& palette);
    StyledTextLayout(const StyledTextLayout&) = delete;
    StyledTextLayout& operator=(const StyledTextLayout&) = delete;

    // Breaks the text into lines of the width, up to the box height; returns the height used.
    qreal layout(qreal width);
    void draw(QPainter& painter, QPointF position) const;
    // Whether some of the note did not fit the box, so that the row shows only its beginning.
    bool isCut() const { return m_cut; }
    // The lines and formats, once laid out.
    const QTextLayout& textLayout() const { return m_layout; }
    // The heights of the first and the last line shown.
    qreal firstLineHeight() const { return m_firstLineHeight; }
    qreal lastLineHeight() const { return m_lastLineHeight; }

    // The height of the laid-out text of a note at the width, for a row's height.
    static qreal measure(std::string_view text, qreal width);
    // How wide the note's longest line is when nothing wraps (of the lines the box shows).
    static qreal naturalWidth(std::string_view text);

private:
    // A list item's line: where it starts in the laid-out string, and how far its wrapped lines
    // are indented (the width of its bullet or number).
    struct ListItem {
        int start;
        qreal indent;
    };
    qreal indentOfLineAt(int position) const;

    QTextLayout m_layout;
    std::vector<ListItem> m_listItems; // in the order of the text
    bool m_textCut = false;            // the note is longer than kMaxStyledBytes
    bool m_cut = false;
    qreal m_width = 0;
    qreal m_height = 0;
    qreal m_firstLineHeight = 0;
    qreal m_lastLineHeight = 0;
};

} // namespace quillery
