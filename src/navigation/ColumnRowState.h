#pragma once

#include "model/Identifier.h"

#include <vector>

namespace quillery {

class Document;
class ColumnScrollArea;

// Where the user is in a window's row of columns, by note identifier rather than by node: the
// note selected in each column, how far each column and the row are scrolled, which column has
// the keyboard, and the widths the user gave the columns. It outlives the columns, so a row rebuilt
// over a tree of new nodes (a notebook read again) opens where the old one was.
struct ColumnRowState {
    // Left to right, up to the first column without a selection.
    std::vector<Identifier> selection;
    std::vector<int> columnScroll;
    int rowScroll = 0;
    int focusedDepth = -1;
    std::vector<int> chosenWidths;

    static ColumnRowState capture(const ColumnScrollArea& content);
    // Opens the deepest selected note the document still holds, along the notes above it as
    // they are now (it may have moved), and scrolls and focuses as before once the row is laid
    // out. Notes that are gone are passed over; the content must be shown.
    void restore(ColumnScrollArea& content, const Document& document) const;
};

} // namespace quillery
