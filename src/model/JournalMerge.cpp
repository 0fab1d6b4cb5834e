#include "model/JournalMerge.h"

#include <algorithm>

namespace quillery {

std::vector<DocumentDiff>
MergedDiffsFromArrayOfDiffs(std::vector<std::vector<DocumentDiff>> diffs) {
    std::size_t total = 0;
    for (const auto& journal : diffs)
        total += journal.size();
    std::vector<DocumentDiff> merged;
    merged.reserve(total);
    for (auto& journal : diffs)
        std::move(journal.begin(), journal.end(), std::back_inserter(merged));
    std::stable_sort(
        merged.begin(), merged.end(),
        [](const DocumentDiff& a, const DocumentDiff& b) { return a.timestamp < b.timestamp; });
    return merged;
}

} // namespace quillery
