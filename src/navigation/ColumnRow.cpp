#include "navigation/ColumnRow.h"

#include "columns/NoteColumn.h"
#include "columns/PictureDecoder.h"
#include "columns/PicturePanel.h"
#include "columns/QtPicture.h"
#include "document/Document.h"
#include "navigation/ColumnEdge.h"
#include "navigation/RevealNote.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QTimer>

#include <algorithm>

namespace quillery {

namespace {

// Widths in ems of the body font: wide enough for a short paragraph per row, narrow enough that
// three or four columns fit a laptop screen. Panels get more room for editing.
constexpr double kColumnWidthEm = 24.0;
constexpr double kPanelWidthEm = 36.0;
// What a user may make of a column's width.
constexpr double kNarrowestColumnEm = 8.0;
constexpr double kWidestColumnEm = 80.0;

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
    if (depth == 0 || !node)
        return ColumnRow::tr("Top notes");
    const QString text = QString::fromStdString(node->text()).section(QLatin1Char('\n'), 0, 0);
    if (text.trimmed().isEmpty())
        return ColumnRow::tr("Notes of a note without text");
    constexpr int kLongest = 40;
    const QString shown = text.size() > kLongest ? text.left(kLongest) + QStringLiteral("…") : text;
    return ColumnRow::tr("Notes of “%1”").arg(shown);
}

} // namespace

ColumnRow::ColumnRow(Document* document, QWidget* parent)
    : QWidget(parent)
    , m_document(document)
    , m_layout(new RowLayout(this))
    , m_slots(*this) {
    setObjectName(QStringLiteral("ColumnRow"));
    setAccessibleName(tr("Columns"));
    m_layout->setContentsMargins(0, 0, 0, 0);
    // One pixel between items, where paintEvent draws the divider.
    m_layout->setSpacing(1);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { noteFocus(now); });
}

// Columns and panels are children and go with the widget. Deleting them moves the focus while
// this object is only a QWidget any more, so the focus handler must be gone by then.
ColumnRow::~ColumnRow() {
    disconnect(qApp, &QApplication::focusChanged, this, nullptr);
}

NodePtr ColumnRow::rootNode() const {
    return m_document ? m_document->rootNode() : nullptr;
}

NoteColumn* ColumnRow::column(int depth) const {
    const auto& all = items();
    if (depth < 0 || depth >= static_cast<int>(all.size()))
        return nullptr;
    return qobject_cast<NoteColumn*>(all[static_cast<std::size_t>(depth)]);
}

QWidget* ColumnRow::panel() const {
    return m_slots.panel().value_or(nullptr);
}

NoteColumn* ColumnRow::activeColumn() const {
    if (panel())
        return nullptr;
    for (QWidget* widget = window()->focusWidget(); widget; widget = widget->parentWidget()) {
        if (auto* found = qobject_cast<NoteColumn*>(widget);
            found && found->parentWidget() == this) {
            return found;
        }
    }
    const auto& all = items();
    if (m_lastActiveColumn && std::ranges::find(all, m_lastActiveColumn.data()) != all.end())
        return m_lastActiveColumn;
    return column(0);
}

void ColumnRow::showPanel(QWidget* panel, int depth) {
    if (!m_slots.showPanel(panel, depth)) {
        panel->deleteLater();
        return;
    }
    emit panelShownChanged(true);
}

void ColumnRow::closePanel() {
    if (!panel())
        return;
    m_slots.closePanel();
    emit panelShownChanged(false);
}

void ColumnRow::focusColumn(int index) {
    m_slots.focus(index);
}

int ColumnRow::columnWidth() const {
    return qRound(fontInfo().pixelSize() * kColumnWidthEm);
}

int ColumnRow::panelWidth() const {
    return qRound(fontInfo().pixelSize() * kPanelWidthEm);
}

int ColumnRow::columnWidth(int depth) const {
    const auto index = static_cast<std::size_t>(depth);
    return depth >= 0 && index < m_chosenWidths.size() && m_chosenWidths[index] > 0
               ? m_chosenWidths[index]
               : columnWidth();
}

void ColumnRow::setChosenWidths(std::vector<int> widths) {
    m_chosenWidths = std::move(widths);
    applyWidths();
}

void ColumnRow::chooseWidth(int depth, int width) {
    if (depth < 0)
        return;
    const int em = fontInfo().pixelSize();
    width = std::clamp(width, qRound(em * kNarrowestColumnEm), qRound(em * kWidestColumnEm));
    const auto index = static_cast<std::size_t>(depth);
    if (m_chosenWidths.size() <= index)
        m_chosenWidths.resize(index + 1, 0);
    if (m_chosenWidths[index] == width)
        return;
    m_chosenWidths[index] = width;
    applyWidths();
    emit chosenWidthsChanged();
}

void ColumnRow::showPicture(const NoteColumn& column, const NodePtr& node) {
    if (!m_document || !node || !node->imageIdentifier())
        return;
    const PicturePtr picture = m_document->image(*node->imageIdentifier());
    if (!picture)
        return;
    auto* imagePanel = new PicturePanel;
    imagePanel->setObjectName(QStringLiteral("PicturePanel"));
    imagePanel->setImage(QtPicture::imageOf(picture));
    if (imagePanel->image().isNull()) {
        connect(&PictureDecoder::instance(), &PictureDecoder::decoded, imagePanel,
                [imagePanel, picture] {
                    if (imagePanel->image().isNull())
                        imagePanel->setImage(QtPicture::imageOf(picture));
                });
    }
    connect(imagePanel, &PicturePanel::finished, this, &ColumnRow::closePanel);
    showPanel(imagePanel, column.depth() + 1);
    // Escape and the zoom keys should work without a click on the picture first.
    if (panel() == imagePanel)
        imagePanel->setFocus(Qt::OtherFocusReason);
}

void ColumnRow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    m_slots.loadRootNode(rootNode());
}

void ColumnRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Mid));
    for (QWidget* item : items()) {
        const int x = item->geometry().right() + 1;
        painter.drawLine(x, 0, x, height());
    }
}

void ColumnRow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        applyWidths();
}

QWidget* ColumnRow::makeColumn(const NodePtr& node, int depth) {
    auto* column = new NoteColumn(m_document, this);
    column->setObjectName(QStringLiteral("column%1").arg(depth));
    column->setAccessibleName(columnName(node, depth));
    column->setParentNote(node);
    column->setDepth(depth);
    connect(column, &NoteColumn::noteSelected, this,
            [this, column](const NodePtr& note) { m_slots.select(column->depth(), note); });
    connect(column, &NoteColumn::selectionCleared, this,
            [this, column] { m_slots.clearSelection(column->depth()); });
    connect(column, &NoteColumn::focusLeftRequested, this,
            [this, column] { m_slots.moveLeft(column->depth()); });
    connect(column, &NoteColumn::focusRightRequested, this,
            [this, column] { m_slots.moveRight(column->depth()); });
    connect(column, &NoteColumn::picturePreviewRequested, this,
            [this, column](const NodePtr& note) { showPicture(*column, note); });
    connect(column, &NoteColumn::editorRequested, this,
            [this, column](QWidget* editor) { showPanel(editor, column->depth() + 1); });
    connect(column, &NoteColumn::editorDone, this, &ColumnRow::closePanel);
    connect(column, &NoteColumn::noteDropped, this,
            [this](const NodePtr& note) { revealNote(*this, *note); });
    auto* edge = new ColumnEdge(column);
    connect(edge, &ColumnEdge::widthRequested, this,
            [this, column](int width) { chooseWidth(column->depth(), width); });
    connect(edge, &ColumnEdge::fitRequested, this,
            [this, column] { chooseWidth(column->depth(), column->fittingWidth()); });
    column->hide();
    return column;
}

bool ColumnRow::isColumn(QWidget* const& item) const {
    return qobject_cast<NoteColumn*>(item) != nullptr;
}

void ColumnRow::appendItem(QWidget* const& item) {
    m_layout->addWidget(item);
    applyWidths();
    item->show();
    update();
}

void ColumnRow::removeItem(QWidget* const& item, bool closing) {
    m_layout->removeWidget(item);
    item->hide();
    if (closing) {
        // A column may be closed from inside one of its own signal handlers.
        item->deleteLater();
    }
    applyWidths();
    update();
}

void ColumnRow::setColumnEnabled(QWidget* const& item, bool enabled) {
    static_cast<NoteColumn*>(item)->setColumnEnabled(enabled);
}

void ColumnRow::focusColumn(QWidget* const& item) {
    auto* column = static_cast<NoteColumn*>(item);
    m_lastActiveColumn = column;
    column->takeFocus();
}

void ColumnRow::scrollToItem(QWidget* const& item) {
    // The geometry must reflect the items added on this turn.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    m_layout->activate();
    emit scrollRequested(item->geometry());
}

void ColumnRow::later(std::function<void()> step) {
    QTimer::singleShot(0, this, std::move(step));
}

void ColumnRow::applyWidths() {
    // Items leave the layout before the model forgets them; only those laid out count.
    std::vector<QWidget*> shown;
    for (int index = 0; index < m_layout->count(); ++index) {
        if (QWidget* item = m_layout->itemAt(index)->widget())
            shown.push_back(item);
    }
    for (QWidget* item : shown) {
        auto* column = qobject_cast<NoteColumn*>(item);
        const int width = column ? columnWidth(column->depth()) : panelWidth();
        const bool last = item == shown.back();
        // The last item also takes the room left at the right of the row.
        item->setMinimumWidth(width);
        item->setMaximumWidth(last ? QWIDGETSIZE_MAX : width);
        m_layout->setStretchFactor(item, last ? 1 : 0);
    }
}

void ColumnRow::noteFocus(QWidget* now) {
    for (QWidget* widget = now; widget; widget = widget->parentWidget()) {
        if (auto* found = qobject_cast<NoteColumn*>(widget);
            found && found->parentWidget() == this) {
            m_lastActiveColumn = found;
            return;
        }
    }
}

} // namespace quillery
