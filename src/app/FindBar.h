#pragma once

#include "document/SearchIndex.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <memory>

class QCheckBox;
class QLabel;
class QLineEdit;
class QListView;

namespace quillery {

class FindResultsModel;

// The search field at the top of a window, with the results under it: every keystroke runs the
// query again, Up and Down move through the results, Return (or a click) chooses one and Escape
// dismisses the bar, giving the focus back. The results follow the notebook while the bar is open.
// The index is built when the bar is made, in the background; until it is ready the bar says
// so and shows the results once they come.
//
// The document must outlive the bar.
class FindBar : public QWidget {
    Q_OBJECT

public:
    explicit FindBar(Document& document, QWidget* parent = nullptr);
    ~FindBar() override;

    // Shows the bar and puts the focus in the field, with its text selected.
    void open();
    void dismiss();
    // The next or previous result of the last search, chosen without showing the bar; opens the
    // bar when there was no search yet.
    void chooseNext();
    void choosePrevious();

signals:
    // The user chose a result; the bar is closed already.
    void noteChosen(const NodePtr& note);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void runQuery();
    void moveSelection(int by);
    void chooseRow(int row);
    void chooseAdjacent(int step);
    void indexBuilt();

    Document& m_document;
    Document::ObserverId m_observer = 0;
    QLineEdit* m_field;
    QCheckBox* m_includeDeleted;
    QLabel* m_count;
    QListView* m_results;
    FindResultsModel* m_model;
    QTimer m_refresh;
    QPointer<QWidget> m_focusBefore;
    // The query the results are for, and the note chosen last, for the next and previous result.
    QString m_lastQuery;
    bool m_lastIncludeDeleted = false;
    Identifier m_lastChosen;
    // Last, so it goes first: its worker may still call back until it is gone.
    std::unique_ptr<SearchIndex> m_index;
};

} // namespace quillery
