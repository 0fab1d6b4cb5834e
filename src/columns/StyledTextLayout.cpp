#include "columns/StyledTextLayout.h"

#include "columns/ColumnStyle.h"
#include "markdown/MarkdownStyler.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QTextOption>
#include <QWidget>

#include <algorithm>

namespace quillery {

namespace {

// The cell's colour for code spans.
const Color& codeColor() {
    static const Color color = Color::fromHsba(0.24, 0.8, 0.5, 1.0);
    return color;
}

std::string_view styledPart(std::string_view text) {
    if (text.size() <= StyledTextLayout::kMaxStyledBytes)
        return text;
    std::size_t end = StyledTextLayout::kMaxStyledBytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end);
}

} // namespace

StyledTextLayout::StyledTextLayout(std::string_view text, const QPalette& palette) {
    const std::string_view styled = styledPart(text);
    m_textCut = styled.size() < text.size();
    MarkdownStyler styler(styled);
    styler.code.color = codeColor();
    const std::vector<StyledRun> runs = styler.attributedString();

    QString string;
    QList<QTextLayout::FormatRange> formats;
    QFont lastFont = columnstyle::font(FontForTextStyle(MyFontTextStyle::body));
    // The styled text always ends with a line break; drawing it would add an empty last line.
    const std::size_t count =
        !runs.empty() && runs.back().isLineTerminator ? runs.size() - 1 : runs.size();
    for (std::size_t i = 0; i < count; ++i) {
        const StyledRun& run = runs[i];
        if (run.isLineTerminator) {
            // QTextLayout breaks lines only at the Unicode line separator.
            string += QChar(QChar::LineSeparator);
            continue;
        }
        const QString piece = QString::fromStdString(run.text).replace(QLatin1Char('\n'),
                                                                       QChar(QChar::LineSeparator));
        const RunPresentation presentation = styler.presentation(run);
        QTextCharFormat format;
        lastFont = columnstyle::font(presentation.font);
        format.setFont(lastFont);
        if (run.style == LineStyle::listMarker) {
            m_listItems.push_back({static_cast<int>(string.size()),
                                   QFontMetricsF(lastFont).horizontalAdvance(piece)});
        }
        format.setForeground(columnstyle::textColor(presentation.foreground, palette));
        if (presentation.link) {
            format.setAnchor(true);
            format.setAnchorHref(QString::fromStdString(*presentation.link));
            format.setFontUnderline(true);
        }
        formats.append({static_cast<int>(string.size()), static_cast<int>(piece.size()), format});
        string += piece;
    }
    m_layout.setText(string);
    m_layout.setFont(lastFont);
    m_layout.setFormats(formats);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_layout.setTextOption(option);
    m_layout.setCacheEnabled(true);
}

qreal StyledTextLayout::indentOfLineAt(int position) const {
    const QString& text = m_layout.text();
    if (position <= 0 || text.at(position - 1) == QChar(QChar::LineSeparator))
        return 0; // the first line of a source line
    // The list item the line continues: the last one starting before it, if no line break lies
    // between.
    const auto after =
        std::upper_bound(m_listItems.begin(), m_listItems.end(), position,
                         [](int at, const ListItem& item) { return at < item.start; });
    if (after == m_listItems.begin())
        return 0;
    const ListItem& item = *(after - 1);
    const auto lineBreak =
        text.lastIndexOf(QChar(QChar::LineSeparator), static_cast<qsizetype>(position) - 1);
    return lineBreak >= item.start ? 0 : item.indent;
}

qreal StyledTextLayout::layout(qreal width) {
    m_width = std::max<qreal>(width, 1);
    m_height = 0;
    m_firstLineHeight = 0;
    m_lastLineHeight = 0;
    m_cut = m_textCut;
    m_layout.beginLayout();
    while (true) {
        QTextLine line = m_layout.createLine();
        if (!line.isValid())
            break;
        // Never wider than the row, however wide the bullet.
        const qreal indent = std::min(indentOfLineAt(line.textStart()), m_width / 2);
        line.setLeadingIncluded(true);
        line.setLineWidth(m_width - indent);
        line.setPosition(QPointF(indent, m_height));
        // Only whole lines are shown; the first always is.
        if (m_height > 0 && m_height + line.height() > kMaxHeight) {
            m_cut = true;
            break;
        }
        if (m_height == 0)
            m_firstLineHeight = line.height();
        m_height += line.height();
        m_lastLineHeight = line.height();
    }
    m_layout.endLayout();
    return m_height;
}

void StyledTextLayout::draw(QPainter& painter, QPointF position) const {
    painter.save();
    painter.setClipRect(QRectF(position, QSizeF(m_width, m_height)), Qt::IntersectClip);
    m_layout.draw(&painter, position);
    painter.restore();
}

qreal StyledTextLayout::measure(std::string_view text, qreal width) {
    StyledTextLayout layout(text, QGuiApplication::palette());
    return layout.layout(width);
}

qreal StyledTextLayout::naturalWidth(std::string_view text) {
    StyledTextLayout layout(text, QGuiApplication::palette());
    layout.layout(QWIDGETSIZE_MAX);
    qreal widest = 0;
    for (int i = 0; i < layout.m_layout.lineCount(); ++i) {
        const QTextLine line = layout.m_layout.lineAt(i);
        widest = std::max(widest, line.x() + line.naturalTextWidth());
    }
    return widest;
}

} // namespace quillery
