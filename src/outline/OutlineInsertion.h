#pragma once

#include "model/Identifier.h"
#include "outline/Outline.h"

#include <vector>

namespace quillery {

class Document;
class NotebookNode;

// Adds the outline's notes to the document under the parent, its top-level notes from position
// `at` on (at the end when `at` is past the last child), every note a new note with a new
// identifier, as one undo step with the action's name ("Import", "Paste"). A picture comes from
// its bytes, else from its file; one that cannot be read or decoded becomes a text note naming
// it ("Missing picture: FILE NAME"). Gives the new top-level notes' identifiers in order.
std::vector<Identifier> insertOutline(Document& document, const Outline& outline,
                                      const NotebookNode& parent, std::size_t at,
                                      const char* actionName);

} // namespace quillery
