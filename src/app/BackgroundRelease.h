#pragma once

#include <memory>

namespace quillery {

class Document;

// Lets go of a notebook on a thread of its own, so that closing a window, quitting, or swapping
// in a replayed tree is immediate however many notes there are. Freeing memory is all the thread
// does, so the process may end before it is done without losing anything.
void releaseInBackground(std::unique_ptr<Document> document);

} // namespace quillery
