#include "app/BackgroundRelease.h"

#include "document/Document.h"

#include <thread>

namespace quillery {

void releaseInBackground(std::unique_ptr<Document> document) {
    if (!document)
        return;
    // Detached rather than pooled: a pool is waited for when the application ends, which would
    // make quitting as slow as freeing.
    std::thread([released = std::move(document)]() mutable { released.reset(); }).detach();
}

} // namespace quillery
