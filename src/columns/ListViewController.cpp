#include "columns/ListViewController.h"

#include "columns/CustomTableView.h"
#include "columns/EditNodeViewController.h"
#include "columns/HighlightableButton.h"
#include "columns/ListViewControllerPrivate.h"
#include "columns/NodeRowDelegate.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMimeData>
#include <QTimer>

#include <algorithm>

namespace quillery {

ListViewController::ListViewController(Document* document, QWidget* parent)
    : QWidget(parent)
    , d(std::make_unique<Private>(this, document)) {
    setObjectName(QStringLiteral("ListViewController"));
    d->tableView->setModel(d->model);
    d->tableView->setItemDelegate(d->rows);
    d->tableView->setAccessibleName(tr("Notes"));
    d->rows->setColumnWidth(d->tableView->viewport()->width());
    connect(d->tableView, &CustomTableView::widthChanged, this,
            [this](int width) { d->rows->setColumnWidth(width); });
    connect(d->tableView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { d->selectionDidChange(); });
    connect(d->tableView, &QAbstractItemView::doubleClicked, this, [this] { didTapEditNode(); });
    connect(d->model, &NodeListModel::noteToEditAfterDrop, this,
            [this](const NodePtr& note) { d->showEditNode(note); });

    d->noEntriesLabel->setObjectName(QStringLiteral("noEntriesLabel"));
    d->noEntriesLabel->setAlignment(Qt::AlignCenter);
    d->noEntriesLabel->setWordWrap(true);
    d->noEntriesLabel->setForegroundRole(QPalette::PlaceholderText);
    // Drops and clicks over the label belong to the list beneath it.
    d->noEntriesLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    setNodeDepth(0);

    d->addNodeButton->setTitle(tr("Add Note"));
    d->addNodeButton->setToolTip(tr("Add a note at the end of this column"));
    connect(d->addNodeButton, &HighlightableButton::pressed, this, [this] { didTapAddNode(); });

    auto* list = new QGridLayout;
    list->addWidget(d->tableView, 0, 0);
    list->addWidget(d->noEntriesLabel, 0, 0, Qt::AlignCenter);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(list, 1);
    auto* buttonRow = new QHBoxLayout;
    const int margin = style()->pixelMetric(QStyle::PM_LayoutLeftMargin);
    buttonRow->setContentsMargins(margin, margin, margin, margin);
    buttonRow->addWidget(d->addNodeButton);
    layout->addLayout(buttonRow);
    setFocusProxy(d->tableView);

    if (document) {
        d->updater = std::make_unique<ColumnUpdater>(*document, *d->model, *d->tableView, *d->rows);
        d->observer = document->addObserver(
            [this](const DocumentUpdate& update) { d->documentDidUpdate(update); });
    }
    d->updateUI();
}

ListViewController::~ListViewController() {
    if (d->document && d->observer)
        d->document->removeObserver(d->observer);
    // A note still being typed never happened.
    if (d->temporaryNode && d->model->representedNode()) {
        auto& children = d->model->representedNode()->children();
        children.erase(std::remove(children.begin(), children.end(), d->temporaryNode),
                       children.end());
    }
}

Document* ListViewController::document() const {
    return d->document;
}

const NodePtr& ListViewController::representedNode() const {
    return d->model->representedNode();
}

void ListViewController::setRepresentedNode(NodePtr node) {
    d->model->setRepresentedNode(std::move(node));
    d->updateUI();
}

int ListViewController::nodeDepth() const {
    return d->nodeDepth;
}

void ListViewController::setNodeDepth(int depth) {
    d->nodeDepth = depth;
    d->noEntriesLabel->setText(depth > 0 ? tr("No sub-notes yet") : tr("No notes yet"));
}

bool ListViewController::isColumnEnabled() const {
    return d->enabled;
}

void ListViewController::setColumnEnabled(bool enabled) {
    d->enabled = enabled;
    d->addNodeButton->setEnabled(enabled);
    d->tableView->setEnabled(enabled);
    reloadVisibleRows(false);
}

void ListViewController::reloadData() {
    d->model->reload();
    d->updateUI();
}

void ListViewController::makeFirstResponder() {
    if (!d->model->representedNode())
        return;
    if (d->rowCount() == 0) {
        d->addNodeButton->setFocus(Qt::OtherFocusReason);
    } else {
        d->tableView->setFocus(Qt::OtherFocusReason);
        if (d->tableView->selectedRow() < 0)
            selectRow(0);
    }
    d->scrollIntoView();
}

void ListViewController::reloadVisibleRows(bool andHeights) {
    if (andHeights) {
        d->rows->invalidateAll();
        emit d->rows->sizeHintChanged(QModelIndex());
    }
    d->tableView->viewport()->update();
}

void ListViewController::didTapAddNode() {
    if (const NodePtr& node = d->model->representedNode())
        d->addNewNodeAtIndex(node->children().size());
}

void ListViewController::didTapAddNodeBeneath() {
    const NodePtr& node = d->model->representedNode();
    if (!node)
        return;
    const int row = d->tableView->selectedRow();
    d->addNewNodeAtIndex(d->isValidRow(row) ? static_cast<std::size_t>(row) + 1
                                            : node->children().size());
}

void ListViewController::didTapEditNode() {
    const int row = d->tableView->selectedRow();
    if (!d->model->representedNode() || !d->isValidRow(row))
        return;
    const NodePtr node = d->model->nodeAt(row);
    if (!node)
        return;
    if (!node->imageIdentifier()) {
        d->showEditNode(node);
        return;
    }
    const auto file = d->document ? d->document->url(*node->imageIdentifier()) : std::nullopt;
    if (file)
        QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(file->string())));
    else if (d->prompts.reportMissingPicture)
        d->prompts.reportMissingPicture(this);
}

void ListViewController::didTapDeleteNode() {
    d->deleteSelectedNode();
}

bool ListViewController::canPaste() const {
    const QMimeData* clipboard = QGuiApplication::clipboard()->mimeData();
    return d->enabled && !d->temporaryNode && clipboard && d->model->canPaste(*clipboard);
}

bool ListViewController::paste() {
    const QMimeData* clipboard = QGuiApplication::clipboard()->mimeData();
    return d->enabled && !d->temporaryNode && clipboard && d->model->paste(*clipboard);
}

int ListViewController::selectedRow() const {
    return d->tableView->selectedRow();
}

NodePtr ListViewController::selectedNode() const {
    return d->model->nodeAt(d->tableView->selectedRow());
}

void ListViewController::selectRow(int row) {
    if (!d->isValidRow(row))
        return;
    const QModelIndex index = d->model->index(row);
    d->tableView->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    d->tableView->scrollTo(index);
}

const NodePtr& ListViewController::temporaryNode() const {
    return d->temporaryNode;
}

void ListViewController::setPrompts(ColumnPrompts prompts) {
    d->prompts = std::move(prompts);
}

CustomTableView* ListViewController::tableView() const {
    return d->tableView;
}

HighlightableButton* ListViewController::addNodeButton() const {
    return d->addNodeButton;
}

QLabel* ListViewController::noEntriesLabel() const {
    return d->noEntriesLabel;
}

QSize ListViewController::sizeHint() const {
    const int line = fontMetrics().height();
    return {line * 22, line * 30};
}

bool ListViewController::event(QEvent* event) {
    // Keys that are column commands win over the window's shortcuts while the focus is in the
    // column: Ctrl+N moves down here rather than making a new notebook.
    if (event->type() == QEvent::ShortcutOverride) {
        const ColumnCommand command = columnCommandForKey(*static_cast<QKeyEvent*>(event));
        if (command != ColumnCommand::None && command != ColumnCommand::InsertText) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void ListViewController::keyPressEvent(QKeyEvent* event) {
    if (!d->perform(columnCommandForKey(*event)))
        QWidget::keyPressEvent(event);
}

} // namespace quillery
