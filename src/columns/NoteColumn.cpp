#include "columns/NoteColumn.h"

#include "columns/AddNoteButton.h"
#include "columns/ColumnPasteHandler.h"
#include "columns/ColumnUpdater.h"
#include "columns/NodeListModel.h"
#include "columns/NodeRowDelegate.h"
#include "columns/NoteListView.h"
#include "document/Document.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QScrollArea>

#include <algorithm>

namespace quillery {

NoteColumn::NoteColumn(Document* document, QWidget* parent)
    : QWidget(parent)
    , m_document(document)
    , m_model(new NodeListModel(document, this))
    , m_rows(new NodeRowDelegate(document, this))
    , m_listView(new NoteListView(this))
    , m_emptyLabel(new QLabel(this))
    , m_addButton(new AddNoteButton(this)) {
    setObjectName(QStringLiteral("NoteColumn"));
    m_listView->setModel(m_model);
    m_listView->setItemDelegate(m_rows);
    m_listView->setAccessibleName(tr("Notes"));
    m_rows->setColumnWidth(m_listView->viewport()->width());
    connect(m_listView, &NoteListView::widthChanged, m_rows, &NodeRowDelegate::setColumnWidth);
    connect(m_listView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &NoteColumn::followSelection);
    connect(m_listView, &QAbstractItemView::doubleClicked, this, &NoteColumn::editSelectedNote);
    connect(m_model, &NodeListModel::noteToEditAfterDrop, this, &NoteColumn::showEditor);
    connect(m_model, &NodeListModel::noteDropped, this, &NoteColumn::noteDropped);

    m_emptyLabel->setObjectName(QStringLiteral("emptyLabel"));
    m_emptyLabel->setAlignment(Qt::AlignCenter);
    m_emptyLabel->setWordWrap(true);
    m_emptyLabel->setForegroundRole(QPalette::PlaceholderText);
    // Drops and clicks over the label belong to the list beneath it.
    m_emptyLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    setDepth(0);

    m_addButton->setTitle(tr("Add Note"));
    m_addButton->setToolTip(tr("Add a note at the end of this column"));
    connect(m_addButton, &AddNoteButton::clicked, this, &NoteColumn::addNote);

    auto* list = new QGridLayout;
    list->addWidget(m_listView, 0, 0);
    list->addWidget(m_emptyLabel, 0, 0, Qt::AlignCenter);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(list, 1);
    auto* buttonRow = new QHBoxLayout;
    const int margin = style()->pixelMetric(QStyle::PM_LayoutLeftMargin);
    buttonRow->setContentsMargins(margin, margin, margin, margin);
    buttonRow->addWidget(m_addButton);
    layout->addLayout(buttonRow);
    setFocusProxy(m_listView);

    if (document) {
        m_updater = std::make_unique<ColumnUpdater>(*document, *m_model, *m_listView, *m_rows);
        m_paste = std::make_unique<ColumnPasteHandler>(*document);
        m_observer =
            document->addObserver([this](const DocumentUpdate& update) { followDocument(update); });
    }
    updateEmptyLabel();
}

NoteColumn::~NoteColumn() {
    if (m_document && m_observer)
        m_document->removeObserver(m_observer);
    // A note still being typed never happened.
    if (m_temporaryNode && parentNote()) {
        auto& children = parentNote()->children();
        children.erase(std::remove(children.begin(), children.end(), m_temporaryNode),
                       children.end());
    }
}

const NodePtr& NoteColumn::parentNote() const {
    return m_model->parentNote();
}

void NoteColumn::setParentNote(NodePtr node) {
    m_model->setParentNote(std::move(node));
    updateEmptyLabel();
}

void NoteColumn::setDepth(int depth) {
    m_depth = depth;
    m_emptyLabel->setText(depth > 0 ? tr("No sub-notes yet") : tr("No notes yet"));
}

void NoteColumn::setColumnEnabled(bool enabled) {
    m_enabled = enabled;
    m_addButton->setEnabled(enabled);
    m_listView->setEnabled(enabled);
    m_listView->viewport()->update();
}

void NoteColumn::takeFocus() {
    if (!parentNote())
        return;
    if (rowCount() == 0) {
        m_addButton->setFocus(Qt::OtherFocusReason);
    } else {
        m_listView->setFocus(Qt::OtherFocusReason);
        if (m_listView->selectedRow() < 0)
            selectRow(0);
    }
    scrollIntoView();
}

int NoteColumn::selectedRow() const {
    return m_listView->selectedRow();
}

NodePtr NoteColumn::selectedNode() const {
    return m_model->nodeAt(m_listView->selectedRow());
}

void NoteColumn::selectRow(int row) {
    if (!isValidRow(row))
        return;
    const QModelIndex index = m_model->index(row);
    m_listView->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    m_listView->scrollTo(index);
}

void NoteColumn::setPrompts(ColumnPrompts prompts) {
    m_prompts = std::move(prompts);
}

NoteColumn* NoteColumn::containing(QWidget* widget) {
    for (; widget; widget = widget->parentWidget()) {
        if (auto* column = qobject_cast<NoteColumn*>(widget))
            return column;
    }
    return nullptr;
}

int NoteColumn::fittingWidth() const {
    const int rows = std::min(rowCount(), NodeRowDelegate::kExactMeasureLimit);
    int widest = 0;
    for (int row = 0; row < rows; ++row) {
        if (const NodePtr node = m_model->nodeAt(row))
            widest = std::max(widest, m_rows->fittingWidth(*node));
    }
    // The list's own frame and scroll bar take their share of the column.
    return widest + width() - m_listView->viewport()->width();
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
    if (!perform(columnCommandForKey(*event)))
        QWidget::keyPressEvent(event);
}

int NoteColumn::rowCount() const {
    return m_model->rowCount();
}

void NoteColumn::updateEmptyLabel() {
    const NodePtr& node = parentNote();
    m_emptyLabel->setVisible(!node || node->children().empty());
}

void NoteColumn::followSelection() {
    if (m_selectionHandlingSuspended)
        return;
    const int row = m_listView->selectedRow();
    if (isValidRow(row))
        emit noteSelected(m_model->nodeAt(row));
    else
        emit selectionCleared();
    m_listView->viewport()->update();
}

void NoteColumn::followDocument(const DocumentUpdate& update) {
    if (!parentNote() || !m_updater)
        return;
    // The row operation may move or clear the selection; the navigation hears once, afterwards,
    // and only when the selected note changed.
    const NodePtr before = selectedNode();
    m_selectionHandlingSuspended = true;
    m_updater->apply(update);
    m_selectionHandlingSuspended = false;
    updateEmptyLabel();
    if (selectedNode() != before)
        followSelection();
}

bool NoteColumn::perform(ColumnCommand command) {
    switch (command) {
    case ColumnCommand::None:
        return false;
    case ColumnCommand::DeleteNote:
        deleteSelectedNote();
        break;
    case ColumnCommand::OpenNote:
        editSelectedNote();
        break;
    case ColumnCommand::FocusLeft:
        emit focusLeftRequested();
        break;
    case ColumnCommand::FocusRight:
        emit focusRightRequested();
        break;
    case ColumnCommand::MoveUp:
        moveUp();
        break;
    case ColumnCommand::MoveDown:
        moveDown();
        break;
    case ColumnCommand::PreviewPicture:
        previewSelectedPicture();
        break;
    case ColumnCommand::Typing:
        break;
    }
    return true;
}

// Text notes have nothing to show; Space on them is swallowed like other typing.
void NoteColumn::previewSelectedPicture() {
    const NodePtr node = selectedNode();
    if (node && node->imageIdentifier())
        emit picturePreviewRequested(node);
}

void NoteColumn::moveUp() {
    if (!parentNote() || !m_addButton->hasFocus() || rowCount() == 0)
        return;
    selectRow(rowCount() - 1);
    m_listView->setFocus(Qt::OtherFocusReason);
}

void NoteColumn::moveDown() {
    if (!parentNote() || m_addButton->hasFocus())
        return;
    m_listView->selectionModel()->clearSelection();
    m_addButton->setFocus(Qt::OtherFocusReason);
}

void NoteColumn::scrollIntoView() {
    for (QWidget* widget = parentWidget(); widget; widget = widget->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(widget)) {
            area->ensureWidgetVisible(this, 0, 0);
            return;
        }
    }
}

} // namespace quillery
