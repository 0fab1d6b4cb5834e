#pragma once

#include "model/DocumentDiff.h"

#include <vector>

namespace quillery {

// Concatenates the journals in the order given and sorts by time stamp alone, stably, so records
// of the same second keep their journal order and every reader builds the same tree.
std::vector<DocumentDiff> MergedDiffsFromArrayOfDiffs(std::vector<std::vector<DocumentDiff>> diffs);

} // namespace quillery
