#include "app/FindResultsModel.h"

#include "document/TextFolding.h"

namespace quillery {

namespace {

// A first line is shown on one row; past this many bytes nobody reads it.
constexpr std::size_t kShownLineBytes = 1000;

std::string_view shownLine(std::string_view text) {
    std::string_view line = firstLine(text);
    if (line.size() <= kShownLineBytes)
        return line;
    std::size_t end = kShownLineBytes;
    // Cut before a character, not inside one.
    while (end > 0 && (static_cast<unsigned char>(line[end]) & 0xC0) == 0x80)
        --end;
    return line.substr(0, end);
}

QString qtText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

void FindResultsModel::setResults(const SearchResults& results,
                                  const std::vector<std::string>& words) {
    beginResetModel();
    m_rows.clear();
    m_rows.reserve(results.hits.size());
    for (const SearchHit& hit : results.hits) {
        Row row;
        row.identifier = hit.node->identifier();
        const std::string_view line = shownLine(hit.node->text());
        row.firstLine = qtText(line);
        for (const folding::ByteRange& range : folding::matchRanges(line, words)) {
            const auto start = qtText(line.substr(0, range.begin)).size();
            const auto length = qtText(line.substr(range.begin, range.end - range.begin)).size();
            row.highlights << static_cast<int>(start) << static_cast<int>(length);
        }
        QStringList path;
        if (hit.deleted)
            path << tr("Deleted notes");
        for (std::string_view ancestor : ancestorFirstLines(*hit.node))
            path << qtText(shownLine(ancestor));
        row.path = path.join(QStringLiteral(" > "));
        row.deleted = hit.deleted;
        m_rows.push_back(std::move(row));
    }
    endResetModel();
}

int FindResultsModel::rowOf(const Identifier& identifier) const {
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].identifier == identifier)
            return static_cast<int>(i);
    }
    return -1;
}

int FindResultsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant FindResultsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Row& shown = row(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return shown.firstLine;
    case Qt::ToolTipRole:
    case PathRole:
        return shown.path;
    case HighlightsRole:
        return QVariant::fromValue(shown.highlights);
    case DeletedRole:
        return shown.deleted;
    default:
        return {};
    }
}

} // namespace quillery
