#include "columns/NodeRowDelegate.h"

#include "columns/ColumnStyle.h"
#include "columns/NodeListModel.h"
#include "columns/QtPicture.h"
#include "columns/StyledTextLayout.h"
#include "document/Document.h"

#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QPixmapCache>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace quillery {

namespace {

constexpr int kTopMargin = 12; // of the 24 around the text, half above and half below
constexpr qreal kSelectionOutlineWidth = 2;
constexpr int kSelectionBarWidth = 6;
constexpr qreal kDimmedTextOpacity = 0.25;
constexpr qreal kDimmedPictureOpacity = 0.5;
constexpr int kCountGap = 6; // between the text and the count beside it
// The fade at the bottom of a cut note covers this many of its last lines.
constexpr qreal kFadeLines = 2;

const NotebookNode* nodeFor(const QModelIndex& index) {
    const auto* model = qobject_cast<const NodeListModel*>(index.model());
    const NodePtr node = model ? model->nodeAt(index.row()) : nullptr;
    return node.get();
}

struct BodyMetrics {
    qreal lineSpacing;
    qreal averageCharWidth;
};

const BodyMetrics& bodyMetrics() {
    static const BodyMetrics metrics = [] {
        const QFontMetricsF font(columnstyle::font(FontForTextStyle(MyFontTextStyle::body)));
        return BodyMetrics{font.lineSpacing(), std::max<qreal>(font.averageCharWidth(), 1)};
    }();
    return metrics;
}

QFont countFont(QFont font) {
    font.setBold(true);
    return font;
}

// The pill showing a count: as high as a line of its font, and at least as wide as high.
QSize countSize(std::size_t count, const QFont& font) {
    const QFontMetrics metrics(font);
    const int height = metrics.height() + 2;
    return {std::max(height, metrics.horizontalAdvance(QString::number(count)) + height * 2 / 3),
            height};
}

QColor over(const QColor& top, const QColor& below) {
    const float alpha = top.alphaF();
    const auto mix = [alpha](float a, float b) {
        return a * alpha + b * (1 - alpha);
    };
    return QColor::fromRgbF(mix(top.redF(), below.redF()), mix(top.greenF(), below.greenF()),
                            mix(top.blueF(), below.blueF()));
}

} // namespace

struct NodeRowDelegate::Heights {
    std::unordered_map<Identifier, int, IdentifierHash> byNode;
};

NodeRowDelegate::NodeRowDelegate(const Document* document, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_document(document)
    , m_heights(std::make_unique<Heights>()) {
}

NodeRowDelegate::~NodeRowDelegate() = default;

std::size_t NodeRowDelegate::measuredRowCount() const {
    return m_heights->byNode.size();
}

void NodeRowDelegate::setColumnWidth(int width) {
    if (width == m_columnWidth)
        return;
    m_columnWidth = width;
    m_heights->byNode.clear();
}

void NodeRowDelegate::invalidate(const Identifier& node) {
    m_heights->byNode.erase(node);
}

int NodeRowDelegate::textWidth() const {
    return std::max(m_columnWidth - 2 * kTextInset, 1);
}

int NodeRowDelegate::textWidth(const NotebookNode& node) const {
    if (node.children().empty())
        return textWidth();
    const int count = countSize(node.children().size(), countFont(QGuiApplication::font())).width();
    // A column too narrow for both keeps a sliver of text rather than none.
    return std::max(textWidth() - count - kCountGap, std::min(textWidth(), count));
}

int NodeRowDelegate::pictureRowHeight(const NotebookNode& node) const {
    const PicturePtr picture = m_document ? m_document->image(*node.imageIdentifier()) : nullptr;
    if (!picture || picture->width() <= 0)
        return kNoPictureHeight;
    return static_cast<int>(
        std::lround(static_cast<double>(m_columnWidth) * picture->height() / picture->width()));
}

int NodeRowDelegate::rowHeight(const NotebookNode& node) const {
    if (node.imageIdentifier())
        return pictureRowHeight(node);
    if (const auto cached = m_heights->byNode.find(node.identifier());
        cached != m_heights->byNode.end())
        return cached->second;
    const qreal text = StyledTextLayout::measure(node.text(), textWidth(node));
    const int height = static_cast<int>(std::ceil(text)) + kVerticalSpace;
    m_heights->byNode.emplace(node.identifier(), height);
    return height;
}

int NodeRowDelegate::estimatedRowHeight(const NotebookNode& node) const {
    if (node.imageIdentifier())
        return pictureRowHeight(node);
    const BodyMetrics& metrics = bodyMetrics();
    const auto perLine = std::max<std::size_t>(
        static_cast<std::size_t>(textWidth(node) / metrics.averageCharWidth), 1);
    const std::string& text = node.text();
    const std::size_t end = std::min(text.size(), StyledTextLayout::kMaxStyledBytes);
    std::size_t lines = 0;
    std::size_t characters = 0;
    for (std::size_t i = 0; i < end; ++i) {
        if (text[i] == '\n') {
            lines += std::max<std::size_t>((characters + perLine - 1) / perLine, 1);
            characters = 0;
        } else if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
            ++characters;
        }
    }
    lines += std::max<std::size_t>((characters + perLine - 1) / perLine, 1);
    const qreal height =
        std::min(static_cast<qreal>(lines) * metrics.lineSpacing, StyledTextLayout::kMaxHeight);
    return static_cast<int>(std::ceil(height)) + kVerticalSpace;
}

int NodeRowDelegate::fittingWidth(const NotebookNode& node) const {
    if (node.imageIdentifier())
        return 0;
    int width =
        static_cast<int>(std::ceil(StyledTextLayout::naturalWidth(node.text()))) + 2 * kTextInset;
    if (!node.children().empty())
        width += countSize(node.children().size(), countFont(QGuiApplication::font())).width() +
                 kCountGap;
    return width;
}

QSize NodeRowDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
    // The list gives every row its full width; only the height matters here.
    const auto* model = qobject_cast<const NodeListModel*>(index.model());
    if (!model || !model->parentNote())
        return {1, kNoColumnNodeHeight};
    const NotebookNode* node = nodeFor(index);
    if (!node)
        return {1, kNoColumnNodeHeight};
    if (!node->imageIdentifier()) {
        if (const auto cached = m_heights->byNode.find(node->identifier());
            cached != m_heights->byNode.end())
            return {1, cached->second};
        if (model->rowCount() > kExactMeasureLimit)
            return {1, estimatedRowHeight(*node)};
    }
    return {1, rowHeight(*node)};
}

void NodeRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    const NotebookNode* node = nodeFor(index);
    if (!node)
        return;
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const bool edited = node == m_editedNote;
    const bool focused =
        option.widget && option.widget->hasFocus() && option.state.testFlag(QStyle::State_Active);
    const columnstyle::SelectionLook look =
        columnstyle::selectionLook(option.palette, edited || (selected && focused));
    const QColor base = option.palette.color(QPalette::Normal, QPalette::Base);
    const bool marked = selected || edited;
    painter->save();
    if (node->imageIdentifier()) {
        paintPicture(*painter, option.rect, *node, enabled);
    } else {
        if (marked)
            painter->fillRect(option.rect, look.tint);
        // In a disabled column the selected and the edited row stay clear while the others fade.
        paintText(*painter, option, index, *node, !enabled && !marked,
                  marked ? over(look.tint, base) : base);
    }
    painter->restore();
    if (!marked)
        return;
    painter->save();
    const QRectF bounds(option.rect);
    const qreal half = kSelectionOutlineWidth / 2;
    painter->setPen(QPen(look.mark, kSelectionOutlineWidth));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(bounds.adjusted(half, half, -half, -half));
    painter->fillRect(
        QRect(option.rect.left(), option.rect.top(), kSelectionBarWidth, option.rect.height()),
        look.mark);
    painter->restore();
}

void NodeRowDelegate::paintPicture(QPainter& painter, const QRect& rect, const NotebookNode& node,
                                   bool enabled) const {
    const QImage image =
        m_document ? QtPicture::imageOf(m_document->image(*node.imageIdentifier())) : QImage();
    if (rect.isEmpty())
        return;
    // A plain box holds the picture's place until it is decoded.
    if (image.isNull()) {
        painter.fillRect(rect, QGuiApplication::palette().color(QPalette::Midlight));
        return;
    }
    // Scaled once per size and screen density, not on every paint.
    const qreal ratio = painter.device()->devicePixelRatioF();
    const QSize pixels = (QSizeF(rect.size()) * ratio).toSize();
    const QString key = QStringLiteral("quillery-row-%1-%2x%3")
                            .arg(QString::fromStdString(node.imageIdentifier()->toString()))
                            .arg(pixels.width())
                            .arg(pixels.height());
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = QPixmap::fromImage(
            image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        pixmap.setDevicePixelRatio(ratio);
        QPixmapCache::insert(key, pixmap);
    }
    painter.setOpacity(enabled ? 1.0 : kDimmedPictureOpacity);
    painter.drawPixmap(rect.topLeft(), pixmap);
}

void NodeRowDelegate::paintText(QPainter& painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index, const NotebookNode& node, bool dimmed,
                                const QColor& background) const {
    painter.setOpacity(dimmed ? kDimmedTextOpacity : 1.0);
    // A disabled list's palette greys its text; the rows that stay clear keep their colours.
    QPalette palette = option.palette;
    if (!dimmed)
        palette.setCurrentColorGroup(QPalette::Active);
    StyledTextLayout layout(node.text(), palette);
    const qreal textHeight = layout.layout(textWidth(node));
    const int height = static_cast<int>(std::ceil(textHeight)) + kVerticalSpace;
    remember(index, node, height, option.rect.height());
    painter.setClipRect(option.rect, Qt::IntersectClip);
    const QPointF origin(option.rect.left() + kTextInset, option.rect.top() + kTopMargin);
    layout.draw(painter, origin);
    if (layout.isCut()) {
        // The note goes on below: its last lines fade into the row.
        const qreal fade = layout.lastLineHeight() * kFadeLines;
        const qreal bottom = origin.y() + textHeight;
        QLinearGradient gradient(0, bottom - fade, 0, bottom);
        QColor clear = background;
        clear.setAlphaF(0);
        gradient.setColorAt(0, clear);
        gradient.setColorAt(1, background);
        painter.fillRect(QRectF(option.rect.left(), bottom - fade, option.rect.width(), fade),
                         gradient);
    }
    if (!node.children().empty())
        paintChildCount(painter, option, node.children().size(), layout.firstLineHeight(), dimmed);
}

void NodeRowDelegate::paintChildCount(QPainter& painter, const QStyleOptionViewItem& option,
                                      std::size_t count, qreal firstLineHeight, bool dimmed) const {
    const QFont font = countFont(option.font);
    const QSize size = countSize(count, font);
    // Beside the first line, in the room its text leaves at the right.
    const int top = option.rect.top() + kTopMargin +
                    static_cast<int>(std::lround((firstLineHeight - size.height()) / 2));
    const QRect badge(option.rect.right() - kTextInset - size.width() + 1,
                      std::max(top, option.rect.top() + 2), size.width(), size.height());
    // The count fades less than the text, through its own colours, to stay readable.
    const columnstyle::ChildCountColors colors =
        columnstyle::childCountColors(option.palette, dimmed);
    painter.setOpacity(1.0);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.badge);
    painter.drawRoundedRect(badge, size.height() / 2.0, size.height() / 2.0);
    painter.setFont(font);
    painter.setPen(colors.text);
    painter.drawText(badge, Qt::AlignCenter, QString::number(count));
}

void NodeRowDelegate::remember(const QModelIndex& index, const NotebookNode& node, int height,
                               int shownHeight) const {
    m_heights->byNode.insert_or_assign(node.identifier(), height);
    if (height == shownHeight || m_relayoutPending)
        return;
    // The row was laid out with an estimate: ask for one more layout pass, after this paint.
    m_relayoutPending = true;
    auto* self = const_cast<NodeRowDelegate*>(this);
    QTimer::singleShot(0, self, [self, changed = QPersistentModelIndex(index)] {
        self->m_relayoutPending = false;
        emit self->sizeHintChanged(changed);
    });
}

} // namespace quillery
