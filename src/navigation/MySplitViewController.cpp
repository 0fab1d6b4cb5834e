#include "navigation/MySplitViewController.h"

#include "columns/ImageDetailViewController.h"
#include "columns/ListViewController.h"
#include "columns/QtPicture.h"
#include "document/Document.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QTimer>

namespace quillery {

namespace {

// Widths in ems of the body font: wide enough for a short paragraph per row, narrow enough that
// three or four columns fit a laptop screen. Panels get more room for editing.
constexpr double kColumnWidthEm = 24.0;
constexpr double kPanelWidthEm = 36.0;

// The row is always exactly as tall as the visible area. A column with a wrapping label would
// otherwise ask for more height at narrow widths, and the scroll area would make the row taller
// than the window, cutting off the bottom of every column.
class RowLayout : public QHBoxLayout {
public:
    using QHBoxLayout::QHBoxLayout;
    bool hasHeightForWidth() const override { return false; }
};

// What a screen reader announces for a column: the note whose notes it lists.
QString columnName(const NodePtr& node, int depth) {
    if (depth == 0 || !node) {
        return MySplitViewController::tr("Top notes");
    }
    const QString text = QString::fromStdString(node->text()).section(QLatin1Char('\n'), 0, 0);
    if (text.trimmed().isEmpty()) {
        return MySplitViewController::tr("Notes of a note without text");
    }
    constexpr int kLongest = 40;
    const QString shown = text.size() > kLongest ? text.left(kLongest) + QStringLiteral("…") : text;
    return MySplitViewController::tr("Notes of “%1”").arg(shown);
}

} // namespace

MySplitViewController::MySplitViewController(Document* document, QWidget* parent)
    : QWidget(parent)
    , m_document(document)
    , m_layout(new RowLayout(this))
    , m_slots(*this) {
    setObjectName(QStringLiteral("MySplitViewController"));
    setAccessibleName(tr("Columns"));
    m_layout->setContentsMargins(0, 0, 0, 0);
    // One pixel between items, where paintEvent draws the divider.
    m_layout->setSpacing(1);
    m_layout->addStretch(1);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { noteFocus(now); });
}

// Columns and panels are children and go with the widget; nothing else to release. Spelled out
// so that the ListViewController type is complete where the pointers die.
MySplitViewController::~MySplitViewController() = default;

NodePtr MySplitViewController::rootNode() const {
    return m_document ? m_document->rootNode() : nullptr;
}

ListViewController* MySplitViewController::column(int depth) const {
    const auto& all = items();
    if (depth < 0 || depth >= static_cast<int>(all.size())) {
        return nullptr;
    }
    return qobject_cast<ListViewController*>(all[static_cast<std::size_t>(depth)]);
}

QWidget* MySplitViewController::panel() const {
    return m_slots.panel().value_or(nullptr);
}

ListViewController* MySplitViewController::activeColumn() const {
    if (panel()) {
        return nullptr;
    }
    for (QWidget* widget = window()->focusWidget(); widget; widget = widget->parentWidget()) {
        if (auto* found = qobject_cast<ListViewController*>(widget);
            found && found->parentWidget() == this) {
            return found;
        }
    }
    const auto& all = items();
    if (m_lastActiveColumn && std::ranges::find(all, m_lastActiveColumn.data()) != all.end()) {
        return m_lastActiveColumn;
    }
    return column(0);
}

void MySplitViewController::present(QWidget* panel, int depth) {
    if (!m_slots.present(panel, depth)) {
        panel->deleteLater();
        return;
    }
    emit panelShownChanged(true);
}

void MySplitViewController::dismissModalViewController() {
    if (!panel()) {
        return;
    }
    m_slots.dismiss();
    emit panelShownChanged(false);
}

void MySplitViewController::makeSplitViewFirstResponder(int index) {
    m_slots.focus(index);
}

int MySplitViewController::columnWidth() const {
    return qRound(fontInfo().pixelSize() * kColumnWidthEm);
}

int MySplitViewController::panelWidth() const {
    return qRound(fontInfo().pixelSize() * kPanelWidthEm);
}

void MySplitViewController::showPicture(const ListViewController& column, const NodePtr& node) {
    if (!m_document || !node || !node->imageIdentifier()) {
        return;
    }
    const PicturePtr picture = m_document->image(*node->imageIdentifier());
    if (!picture) {
        return;
    }
    auto* imagePanel = new ImageDetailViewController;
    imagePanel->setObjectName(QStringLiteral("ImageDetailViewController"));
    imagePanel->setImage(QtPicture::imageOf(picture));
    connect(imagePanel, &ImageDetailViewController::finished, this,
            &MySplitViewController::dismissModalViewController);
    present(imagePanel, column.nodeDepth() + 1);
    // Escape and the zoom keys should work without a click on the picture first.
    if (panel() == imagePanel) {
        imagePanel->setFocus(Qt::OtherFocusReason);
    }
}

void MySplitViewController::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    m_slots.loadRootNode(rootNode());
}

void MySplitViewController::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Mid));
    for (QWidget* item : items()) {
        const int x = item->geometry().right() + 1;
        painter.drawLine(x, 0, x, height());
    }
}

void MySplitViewController::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        applyWidths();
    }
}

QWidget* MySplitViewController::makeColumn(const NodePtr& node, int depth) {
    auto* column = new ListViewController(m_document, this);
    column->setObjectName(QStringLiteral("column%1").arg(depth));
    column->setAccessibleName(columnName(node, depth));
    column->setRepresentedNode(node);
    column->setNodeDepth(depth);
    connect(column, &ListViewController::noteSelected, this,
            [this, column](const NodePtr& note) { m_slots.select(column->nodeDepth(), note); });
    connect(column, &ListViewController::selectionCleared, this,
            [this, column] { m_slots.clearSelection(column->nodeDepth()); });
    connect(column, &ListViewController::focusLeftRequested, this,
            [this, column] { m_slots.moveLeft(column->nodeDepth()); });
    connect(column, &ListViewController::focusRightRequested, this,
            [this, column] { m_slots.moveRight(column->nodeDepth()); });
    connect(column, &ListViewController::picturePreviewRequested, this,
            [this, column](const NodePtr& note) { showPicture(*column, note); });
    connect(column, &ListViewController::editorRequested, this,
            [this, column](QWidget* editor) { present(editor, column->nodeDepth() + 1); });
    connect(column, &ListViewController::editorDone, this,
            &MySplitViewController::dismissModalViewController);
    column->hide();
    return column;
}

bool MySplitViewController::isColumn(QWidget* const& item) const {
    return qobject_cast<ListViewController*>(item) != nullptr;
}

void MySplitViewController::appendItem(QWidget* const& item) {
    item->setFixedWidth(isColumn(item) ? columnWidth() : panelWidth());
    // Before the trailing stretch, which keeps the items at the left.
    m_layout->insertWidget(m_layout->count() - 1, item);
    item->show();
    update();
}

void MySplitViewController::removeItem(QWidget* const& item, bool closing) {
    m_layout->removeWidget(item);
    item->hide();
    if (closing) {
        // A column may be closed from inside one of its own signal handlers.
        item->deleteLater();
    }
    update();
}

void MySplitViewController::setColumnEnabled(QWidget* const& item, bool enabled) {
    static_cast<ListViewController*>(item)->setColumnEnabled(enabled);
}

void MySplitViewController::focusColumn(QWidget* const& item) {
    auto* column = static_cast<ListViewController*>(item);
    m_lastActiveColumn = column;
    column->makeFirstResponder();
}

void MySplitViewController::scrollToItem(QWidget* const& item) {
    // The geometry must reflect the items added on this turn.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    m_layout->activate();
    emit scrollRequested(item->geometry());
}

void MySplitViewController::later(std::function<void()> step) {
    QTimer::singleShot(0, this, std::move(step));
}

void MySplitViewController::applyWidths() {
    for (QWidget* item : items()) {
        item->setFixedWidth(isColumn(item) ? columnWidth() : panelWidth());
    }
}

void MySplitViewController::noteFocus(QWidget* now) {
    for (QWidget* widget = now; widget; widget = widget->parentWidget()) {
        if (auto* found = qobject_cast<ListViewController*>(widget);
            found && found->parentWidget() == this) {
            m_lastActiveColumn = found;
            return;
        }
    }
}

} // namespace quillery
