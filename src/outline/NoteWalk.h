#pragma once

#include "outline/Outline.h"
#include "outline/OutlineWriter.h"

namespace quillery {

class Document;
class NotebookNode;

// Walks without recursion, so any depth of tree is safe.
namespace note_walk {

// Hands a note with its subtree (with `includeTop`), or only the notes below it, to the writer in
// tree order, and does not finish it. Pictures come with their key, their file in the package and
// the bytes of a picture not saved yet.
void writeNotes(const Document& document, const NotebookNode& top, bool includeTop,
                OutlineWriter& writer);
void writeOutline(const Outline& outline, OutlineWriter& writer);

// A note and its subtree as an outline (what a copy puts on the clipboard): a picture saved in
// the package by its file, one not saved yet by its bytes.
Outline outlineFromNotes(const Document& document, const NotebookNode& top);

} // namespace note_walk
} // namespace quillery
