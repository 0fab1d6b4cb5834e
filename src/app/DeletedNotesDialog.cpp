#include "app/DeletedNotesDialog.h"

#include "app/DocumentWindow.h"
#include "document/Document.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace quillery {

namespace {

constexpr int kIdentifierRole = Qt::UserRole;

QString titleOf(const NotebookNode& note) {
    if (note.imageIdentifier())
        return DeletedNotesDialog::tr("Picture");
    const QString text = QString::fromStdString(note.text()).trimmed();
    const QString firstLine = text.section(QLatin1Char('\n'), 0, 0);
    return firstLine.isEmpty() ? DeletedNotesDialog::tr("Empty note") : firstLine;
}

} // namespace

DeletedNotesDialog::DeletedNotesDialog(DocumentWindow& window)
    : QDialog(&window)
    , m_window(window)
    , m_list(new QTreeWidget(this))
    , m_putBack(new QPushButton(tr("&Put Back"), this)) {
    setObjectName(QStringLiteral("DeletedNotesDialog"));
    setWindowTitle(tr("Deleted Notes — %1").arg(window.displayName()));
    m_list->setObjectName(QStringLiteral("deletedNotesList"));
    m_list->setHeaderLabels({tr("Note"), tr("Deleted From")});
    m_list->header()->setSectionResizeMode(QHeaderView::Stretch);
    m_list->setUniformRowHeights(true);
    m_putBack->setObjectName(QStringLiteral("putBackButton"));
    // Return in the list reaches the dialog, which clicks its default button.
    m_putBack->setDefault(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->addButton(m_putBack, QDialogButtonBox::ActionRole);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_putBack, &QPushButton::clicked, this, &DeletedNotesDialog::putBackSelectedNote);
    connect(m_list, &QTreeWidget::itemExpanded, this, &DeletedNotesDialog::fillChildren);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &DeletedNotesDialog::updateButtons);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_list);
    layout->addWidget(buttons);
    const int line = fontMetrics().height();
    resize(line * 36, line * 24);
    reload();
}

void DeletedNotesDialog::scheduleReload() {
    if (m_reloadScheduled)
        return;
    m_reloadScheduled = true;
    QTimer::singleShot(0, this, [this] {
        m_reloadScheduled = false;
        reload();
    });
}

void DeletedNotesDialog::reload() {
    QTreeWidgetItem* current = m_list->currentItem();
    const QString selected = current ? current->data(0, kIdentifierRole).toString() : QString();
    const int selectedRow = current ? m_list->indexOfTopLevelItem(current) : -1;
    m_list->clear();
    const auto& deleted = m_window.document().deletedRootNode()->children();
    // The last deleted stands last among the deleted notes and first in the list.
    for (auto note = deleted.rbegin(); note != deleted.rend(); ++note)
        m_list->addTopLevelItem(makeItem(**note, true));
    QTreeWidgetItem* again = nullptr;
    for (int row = 0; row < m_list->topLevelItemCount() && !again; ++row) {
        if (m_list->topLevelItem(row)->data(0, kIdentifierRole).toString() == selected)
            again = m_list->topLevelItem(row);
    }
    // A note put back leaves its row to the note that followed it.
    if (!again && m_list->topLevelItemCount() > 0)
        again = m_list->topLevelItem(std::clamp(selectedRow, 0, m_list->topLevelItemCount() - 1));
    m_list->setCurrentItem(again);
    updateButtons();
}

void DeletedNotesDialog::putBackSelectedNote() {
    const NodePtr note = noteOf(m_list->currentItem());
    if (!note)
        return;
    m_window.document().userDidPutBack(*note);
    reload();
}

QTreeWidgetItem* DeletedNotesDialog::makeItem(const NotebookNode& note, bool withOrigin) const {
    auto* item = new QTreeWidgetItem;
    item->setText(0, titleOf(note));
    if (withOrigin)
        item->setText(1, originPath(note));
    item->setData(0, kIdentifierRole, QString::fromStdString(note.identifier().toString()));
    item->setChildIndicatorPolicy(note.children().empty() ? QTreeWidgetItem::DontShowIndicator
                                                          : QTreeWidgetItem::ShowIndicator);
    return item;
}

// The titles from the top of the notebook down to the former parent.
QString DeletedNotesDialog::originPath(const NotebookNode& note) const {
    const Document& document = m_window.document();
    const DeletionOrigin* origin = document.deletionOrigin(note.identifier());
    NodePtr parent = origin ? document.node(origin->parent) : nullptr;
    if (!parent)
        return tr("Unknown");
    QStringList titles;
    const NotebookNode* current = parent.get();
    for (std::size_t steps = 0; current && steps <= document.nodeCount(); ++steps) {
        if (current == document.rootNode().get())
            return titles.isEmpty() ? tr("Top level") : titles.join(QStringLiteral(" › "));
        if (current == document.deletedRootNode().get()) {
            titles.prepend(tr("Deleted Notes"));
            return titles.join(QStringLiteral(" › "));
        }
        titles.prepend(titleOf(*current));
        current = current->parentNode();
    }
    return tr("Unknown");
}

void DeletedNotesDialog::fillChildren(QTreeWidgetItem* item) {
    if (!item || item->childCount() > 0)
        return;
    if (const NodePtr note = noteOf(item)) {
        for (const NodePtr& child : note->children())
            item->addChild(makeItem(*child, false));
    }
}

NodePtr DeletedNotesDialog::noteOf(const QTreeWidgetItem* item) const {
    if (!item)
        return nullptr;
    const NodePtr note = m_window.document().node(
        Identifier(item->data(0, kIdentifierRole).toString().toStdString()));
    // Only a note that is still deleted can be put back.
    return note && !m_window.document().isInNotebook(*note) ? note : nullptr;
}

void DeletedNotesDialog::updateButtons() {
    m_putBack->setEnabled(noteOf(m_list->currentItem()) != nullptr);
}

} // namespace quillery
