#include "app/FindBar.h"

#include "app/FindResultDelegate.h"
#include "app/FindResultsModel.h"
#include "document/TextFolding.h"

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QLocale>
#include <QVBoxLayout>

namespace quillery {

namespace {

constexpr int kVisibleResults = 8;

} // namespace

FindBar::FindBar(Document& document, QWidget* parent)
    : QWidget(parent)
    , m_document(document)
    , m_field(new QLineEdit(this))
    , m_includeDeleted(new QCheckBox(tr("Include deleted notes"), this))
    , m_count(new QLabel(this))
    , m_results(new QListView(this))
    , m_model(new FindResultsModel(this)) {
    setObjectName(QStringLiteral("FindBar"));
    m_field->setObjectName(QStringLiteral("findField"));
    m_field->setPlaceholderText(tr("Find notes"));
    m_field->setClearButtonEnabled(true);
    m_includeDeleted->setObjectName(QStringLiteral("findIncludeDeleted"));
    m_count->setObjectName(QStringLiteral("findCount"));
    m_results->setObjectName(QStringLiteral("findResults"));
    m_results->setModel(m_model);
    m_results->setItemDelegate(new FindResultDelegate(m_results));
    m_results->setUniformItemSizes(true);
    m_results->setTextElideMode(Qt::ElideMiddle);
    m_results->setMaximumHeight(m_results->sizeHintForRow(0) > 0
                                    ? m_results->sizeHintForRow(0) * kVisibleResults
                                    : fontMetrics().height() * 3 * kVisibleResults);

    auto* top = new QHBoxLayout;
    top->addWidget(m_field, 1);
    top->addWidget(m_includeDeleted);
    top->addWidget(m_count);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_results);

    m_field->installEventFilter(this);
    m_results->installEventFilter(this);
    connect(m_field, &QLineEdit::textChanged, this, &FindBar::runQuery);
    connect(m_includeDeleted, &QCheckBox::toggled, this, &FindBar::runQuery);
    connect(m_results, &QListView::clicked, this,
            [this](const QModelIndex& index) { chooseRow(index.row()); });

    // Changes come in bursts (an undo, a merge): the results are found again once per burst.
    m_refresh.setSingleShot(true);
    m_refresh.setInterval(0);
    connect(&m_refresh, &QTimer::timeout, this, [this] {
        if (isVisible())
            runQuery();
    });
    m_observer = m_document.addObserver([this](const DocumentUpdate&) { m_refresh.start(); });
    m_index = std::make_unique<SearchIndex>(m_document, [this] {
        QMetaObject::invokeMethod(this, &FindBar::indexBuilt, Qt::QueuedConnection);
    });
    hide();
}

FindBar::~FindBar() {
    m_index.reset();
    m_document.removeObserver(m_observer);
}

void FindBar::open() {
    if (!isVisible()) {
        m_focusBefore = QApplication::focusWidget();
        show();
        runQuery();
    }
    m_field->setFocus(Qt::ShortcutFocusReason);
    m_field->selectAll();
}

void FindBar::dismiss() {
    if (!isVisible())
        return;
    hide();
    if (m_focusBefore)
        m_focusBefore->setFocus(Qt::OtherFocusReason);
}

void FindBar::chooseNext() {
    chooseAdjacent(1);
}

void FindBar::choosePrevious() {
    chooseAdjacent(-1);
}

bool FindBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
    case Qt::Key_Up:
        moveSelection(-1);
        return true;
    case Qt::Key_Down:
        moveSelection(1);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        chooseRow(m_results->currentIndex().row());
        return true;
    case Qt::Key_Escape:
        dismiss();
        return true;
    default:
        return QWidget::eventFilter(watched, event);
    }
}

void FindBar::runQuery() {
    const QString query = m_field->text();
    const bool includeDeleted = m_includeDeleted->isChecked();
    const Identifier current = m_results->currentIndex().isValid()
                                   ? m_model->row(m_results->currentIndex().row()).identifier
                                   : Identifier();
    const std::string text = query.toStdString();
    const SearchResults results = m_index->find(text, includeDeleted);
    m_model->setResults(results, folding::queryWords(text));
    m_lastQuery = query;
    m_lastIncludeDeleted = includeDeleted;
    if (!results.ready)
        m_count->setText(tr("Preparing search…"));
    else if (folding::queryWords(text).empty())
        m_count->clear();
    else if (results.total == 1)
        m_count->setText(tr("1 note"));
    else
        m_count->setText(tr("%1 notes").arg(QLocale().toString(qulonglong{results.total})));
    if (m_model->rowCount() > 0)
        m_results->setCurrentIndex(m_model->index(std::max(0, m_model->rowOf(current))));
}

void FindBar::moveSelection(int by) {
    const int rows = m_model->rowCount();
    if (rows == 0)
        return;
    const int row = std::clamp(m_results->currentIndex().row() + by, 0, rows - 1);
    m_results->setCurrentIndex(m_model->index(row));
    m_results->scrollTo(m_model->index(row));
}

void FindBar::chooseRow(int row) {
    // A deleted note has no column to open.
    if (row < 0 || row >= m_model->rowCount() || m_model->row(row).deleted)
        return;
    m_lastChosen = m_model->row(row).identifier;
    NodePtr note = m_document.node(m_lastChosen);
    hide();
    if (note)
        emit noteChosen(note);
}

void FindBar::chooseAdjacent(int step) {
    if (folding::queryWords(m_lastQuery.toStdString()).empty()) {
        open();
        return;
    }
    const std::string text = m_lastQuery.toStdString();
    const SearchResults results = m_index->find(text, m_lastIncludeDeleted);
    if (results.hits.empty())
        return;
    m_model->setResults(results, folding::queryWords(text));
    const int count = m_model->rowCount();
    const int at = m_model->rowOf(m_lastChosen);
    int row = at < 0 ? (step > 0 ? 0 : count - 1) : (at + step + count) % count;
    // Deleted notes have no columns to open; step over them.
    for (int tries = 1; tries < count && m_model->row(row).deleted; ++tries)
        row = (row + step + count) % count;
    m_results->setCurrentIndex(m_model->index(row));
    chooseRow(row);
}

void FindBar::indexBuilt() {
    // Taking up the build happens on this thread, in the index's next call.
    if (m_index->isReady() && isVisible())
        runQuery();
}

} // namespace quillery
