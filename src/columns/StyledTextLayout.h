#pragma once

#include <QTextLayout>

#include <string_view>

class QPainter;
class QPalette;

namespace quillery {

// A note's text with its markdown styling, laid out in lines for one row of a column. The same
// layout measures a row (NodeRowDelegate) and draws it, so the height always fits the drawing.
class StyledTextLayout {
public:
    // Everything past this many bytes of a note lies far below the measuring box; it is neither
    // styled nor laid out, which keeps huge notes as cheap as any other.
    static constexpr std::size_t kMaxStyledBytes = 32 * 1024;
    // The measuring box is this high; taller text is cut at the box.
    static constexpr qreal kMaxHeight = 512;

    StyledTextLayout(std::string_view text, const QPalette& palette);
    StyledTextLayout(const StyledTextLayout&) = delete;
    StyledTextLayout& operator=(const StyledTextLayout&) = delete;

    // Breaks the text into lines of the width, up to the box height; returns the height used.
    qreal layout(qreal width);
    void draw(QPainter& painter, QPointF position) const;

    // The height of the laid-out text of a note at the width, for a row's height.
    static qreal measure(std::string_view text, qreal width);

private:
    QTextLayout m_layout;
    qreal m_width = 0;
    qreal m_height = 0;
};

} // namespace quillery
