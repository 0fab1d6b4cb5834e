#include "columns/NodeRowDelegate.h"

#include "columns/ColumnStyle.h"
#include "columns/NodeListModel.h"
#include "columns/QtPicture.h"
#include "columns/StyledTextLayout.h"
#include "document/Document.h"

#include <QPainter>
#include <QPixmapCache>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace quillery {

namespace {

constexpr int kTopMargin = 10; // of the 24 around the text; the rest, below, holds the count
constexpr qreal kSelectionOutlineWidth = 2;
constexpr int kSelectionBarWidth = 6;
constexpr qreal kDimmedTextOpacity = 0.25;
constexpr qreal kDimmedPictureOpacity = 0.5;

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
    const qreal text = StyledTextLayout::measure(node.text(), textWidth());
    const int height = static_cast<int>(std::ceil(text)) + kVerticalSpace;
    m_heights->byNode.emplace(node.identifier(), height);
    return height;
}

int NodeRowDelegate::estimatedRowHeight(const NotebookNode& node) const {
    if (node.imageIdentifier())
        return pictureRowHeight(node);
    const BodyMetrics& metrics = bodyMetrics();
    const auto perLine =
        std::max<std::size_t>(static_cast<std::size_t>(textWidth() / metrics.averageCharWidth), 1);
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
    painter->save();
    if (node->imageIdentifier())
        paintPicture(*painter, option.rect, *node, enabled);
    else
        paintText(*painter, option, index, *node, enabled, selected);
    painter->restore();
    if (selected)
        paintSelection(*painter, option);
}

void NodeRowDelegate::paintPicture(QPainter& painter, const QRect& rect, const NotebookNode& node,
                                   bool enabled) const {
    const QImage image =
        m_document ? QtPicture::imageOf(m_document->image(*node.imageIdentifier())) : QImage();
    if (image.isNull() || rect.isEmpty())
        return;
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
                                const QModelIndex& index, const NotebookNode& node, bool enabled,
                                bool selected) const {
    // In a disabled column the selected row stays clear while the others fade.
    const bool dimmed = !enabled && !selected;
    painter.setOpacity(dimmed ? kDimmedTextOpacity : 1.0);
    StyledTextLayout layout(node.text(), option.palette);
    const int height = static_cast<int>(std::ceil(layout.layout(textWidth()))) + kVerticalSpace;
    remember(index, node, height, option.rect.height());
    painter.setClipRect(option.rect, Qt::IntersectClip);
    layout.draw(painter, QPointF(option.rect.left() + kTextInset, option.rect.top() + kTopMargin));
    if (!node.children().empty())
        paintChildCount(painter, option, node.children().size(), dimmed);
}

void NodeRowDelegate::paintChildCount(QPainter& painter, const QStyleOptionViewItem& option,
                                      std::size_t count, bool dimmed) const {
    QFont font = option.font;
    font.setBold(true);
    const QFontMetrics metrics(font);
    const QString text = QString::number(count);
    const int height = metrics.height() + 2;
    const int width = std::max(height, metrics.horizontalAdvance(text) + height * 2 / 3);
    // In the corner below the text, which the 24 of vertical space leaves free.
    const QRect badge(option.rect.right() - kTextInset - width + 1,
                      option.rect.bottom() - height - 3, width, height);
    // The count fades less than the text, through its own colours, to stay readable.
    const columnstyle::ChildCountColors colors =
        columnstyle::childCountColors(option.palette, dimmed);
    painter.setOpacity(1.0);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.badge);
    painter.drawRoundedRect(badge, height / 2.0, height / 2.0);
    painter.setFont(font);
    painter.setPen(colors.text);
    painter.drawText(badge, Qt::AlignCenter, text);
}

void NodeRowDelegate::paintSelection(QPainter& painter, const QStyleOptionViewItem& option) const {
    const bool emphasized =
        option.widget && option.widget->hasFocus() && option.state.testFlag(QStyle::State_Active);
    QColor color;
    if (emphasized) {
        color = columnstyle::toQColor(Colors::rowHighlight());
    } else if (columnstyle::isDark(option.palette)) {
        color = QColor::fromRgbF(0.8f, 0.8f, 0.8f, 0.4f);
    } else {
        // The design's light gray would vanish on a white list; the same gray, darker.
        color = QColor::fromRgbF(0.5f, 0.5f, 0.5f, 0.4f);
    }
    painter.save();
    const QRectF bounds(option.rect);
    const qreal half = kSelectionOutlineWidth / 2;
    painter.setPen(QPen(color, kSelectionOutlineWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(bounds.adjusted(half, half, -half, -half));
    painter.fillRect(
        QRect(option.rect.left(), option.rect.top(), kSelectionBarWidth, option.rect.height()),
        color);
    painter.restore();
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
