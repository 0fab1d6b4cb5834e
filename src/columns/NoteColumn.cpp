#include "columns/NoteColumn.h"

#include "columns/AddNoteButton.h"
#include "columns/NodeRowDelegate.h"
#include "columns/NoteColumnPrivate.h"
#include "columns/NoteEditorPanel.h"
#include "columns/NoteListView.h"

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

NoteColumn::NoteColumn(Document* document, QWidget* parent)
    : QWidget(parent)
    , d(std::make_unique<Private>(this, document)) {
    setObjectName(QStringLiteral("NoteColumn"));
    d->listView->setModel(d->model);
    d->listView->setItemDelegate(d->rows);
    d->listView->setAccessibleName(tr("Notes"));
    d->rows->setColumnWidth(d->listView->viewport()->width());
    connect(d->listView, &NoteListView::widthChanged, this,
            [this](int width) { d->rows->setColumnWidth(width); });
    connect(d->listView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { d->selectionDidChange(); });
    connect(d->listView, &QAbstractItemView::doubleClicked, this, [this] { editSelectedNote(); });
    connect(d->model, &NodeListModel::noteToEditAfterDrop, this,
            [this](const NodePtr& note) { d->showEditNode(note); });

    d->noEntriesLabel->setObjectName(QStringLiteral("noEntriesLabel"));
    d->noEntriesLabel->setAlignment(Qt::AlignCenter);
    d->noEntriesLabel->setWordWrap(true);
    d->noEntriesLabel->setForegroundRole(QPalette::PlaceholderText);
    // Drops and clicks over the label belong to the list beneath it.
    d->noEntriesLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    setDepth(0);

    d->addButton->setTitle(tr("Add Note"));
    d->addButton->setToolTip(tr("Add a note at the end of this column"));
    connect(d->addButton, &AddNoteButton::clicked, this, [this] { addNote(); });

    auto* list = new QGridLayout;
    list->addWidget(d->listView, 0, 0);
    list->addWidget(d->noEntriesLabel, 0, 0, Qt::AlignCenter);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(list, 1);
    auto* buttonRow = new QHBoxLayout;
    const int margin = style()->pixelMetric(QStyle::PM_LayoutLeftMargin);
    buttonRow->setContentsMargins(margin, margin, margin, margin);
    buttonRow->addWidget(d->addButton);
    layout->addLayout(buttonRow);
    setFocusProxy(d->listView);

    if (document) {
        d->updater = std::make_unique<ColumnUpdater>(*document, *d->model, *d->listView, *d->rows);
        d->observer = document->addObserver(
            [this](const DocumentUpdate& update) { d->documentDidUpdate(update); });
    }
    d->updateUI();
}

NoteColumn::~NoteColumn() {
    if (d->document && d->observer)
        d->document->removeObserver(d->observer);
    // A note still being typed never happened.
    if (d->temporaryNode && d->model->representedNode()) {
        auto& children = d->model->representedNode()->children();
        children.erase(std::remove(children.begin(), children.end(), d->temporaryNode),
                       children.end());
    }
}

Document* NoteColumn::document() const {
    return d->document;
}

const NodePtr& NoteColumn::representedNode() const {
    return d->model->representedNode();
}

void NoteColumn::setRepresentedNode(NodePtr node) {
    d->model->setRepresentedNode(std::move(node));
    d->updateUI();
}

int NoteColumn::depth() const {
    return d->depth;
}

void NoteColumn::setDepth(int depth) {
    d->depth = depth;
    d->noEntriesLabel->setText(depth > 0 ? tr("No sub-notes yet") : tr("No notes yet"));
}

bool NoteColumn::isColumnEnabled() const {
    return d->enabled;
}

void NoteColumn::setColumnEnabled(bool enabled) {
    d->enabled = enabled;
    d->addButton->setEnabled(enabled);
    d->listView->setEnabled(enabled);
    d->listView->viewport()->update();
}

void NoteColumn::takeFocus() {
    if (!d->model->representedNode())
        return;
    if (d->rowCount() == 0) {
        d->addButton->setFocus(Qt::OtherFocusReason);
    } else {
        d->listView->setFocus(Qt::OtherFocusReason);
        if (d->listView->selectedRow() < 0)
            selectRow(0);
    }
    d->scrollIntoView();
}

void NoteColumn::addNote() {
    if (const NodePtr& node = d->model->representedNode())
        d->addNewNodeAtIndex(node->children().size());
}

void NoteColumn::addNoteBeneath() {
    const NodePtr& node = d->model->representedNode();
    if (!node)
        return;
    const int row = d->listView->selectedRow();
    d->addNewNodeAtIndex(d->isValidRow(row) ? static_cast<std::size_t>(row) + 1
                                            : node->children().size());
}

void NoteColumn::editSelectedNote() {
    const int row = d->listView->selectedRow();
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

void NoteColumn::deleteSelectedNote() {
    d->deleteSelectedNode();
}

bool NoteColumn::canPaste() const {
    const QMimeData* clipboard = QGuiApplication::clipboard()->mimeData();
    return d->enabled && !d->temporaryNode && clipboard && d->model->canPaste(*clipboard);
}

bool NoteColumn::paste() {
    const QMimeData* clipboard = QGuiApplication::clipboard()->mimeData();
    return d->enabled && !d->temporaryNode && clipboard && d->model->paste(*clipboard);
}

int NoteColumn::selectedRow() const {
    return d->listView->selectedRow();
}

NodePtr NoteColumn::selectedNode() const {
    return d->model->nodeAt(d->listView->selectedRow());
}

void NoteColumn::selectRow(int row) {
    if (!d->isValidRow(row))
        return;
    const QModelIndex index = d->model->index(row);
    d->listView->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    d->listView->scrollTo(index);
}

const NodePtr& NoteColumn::temporaryNode() const {
    return d->temporaryNode;
}

void NoteColumn::setPrompts(ColumnPrompts prompts) {
    d->prompts = std::move(prompts);
}

NoteListView* NoteColumn::listView() const {
    return d->listView;
}

QSize NoteColumn::sizeHint() const {
    const int line = fontMetrics().height();
    return {line * 22, line * 30};
}

bool NoteColumn::event(QEvent* event) {
    // Keys that are column commands win over the window's shortcuts while the focus is in the
    // column: Ctrl+N moves down here rather than making a new notebook.
    if (event->type() == QEvent::ShortcutOverride) {
        const ColumnCommand command = columnCommandForKey(*static_cast<QKeyEvent*>(event));
        if (command != ColumnCommand::None && command != ColumnCommand::Typing) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void NoteColumn::keyPressEvent(QKeyEvent* event) {
    if (!d->perform(columnCommandForKey(*event)))
        QWidget::keyPressEvent(event);
}

} // namespace quillery
