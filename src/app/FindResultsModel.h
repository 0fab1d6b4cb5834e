#pragma once

#include "document/SearchIndex.h"

#include <QAbstractListModel>
#include <QList>
#include <QString>

namespace quillery {

// The shown results of a search, one row per note: its first line with the matched words
// marked, and its path. Rows keep the note's identifier rather than the note, so a row never
// points at a note that is gone.
class FindResultsModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        PathRole = Qt::UserRole + 1, // QString: the ancestors' first lines, " > " between
        HighlightsRole,              // QList<int>: start and length of each marked range
        DeletedRole,                 // bool
    };

    struct Row {
        Identifier identifier;
        QString firstLine;
        QString path;
        QList<int> highlights;
        bool deleted = false;
    };

    using QAbstractListModel::QAbstractListModel;

    // Takes the hits of a search for the query's words; the hits' notes must be valid now.
    void setResults(const SearchResults& results, const std::vector<std::string>& words);
    const Row& row(int index) const { return m_rows[static_cast<std::size_t>(index)]; }
    // The row of the note, or -1.
    int rowOf(const Identifier& identifier) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    std::vector<Row> m_rows;
};

} // namespace quillery
