#include "outline/NoteWalk.h"

#include "document/Document.h"

#include <utility>
#include <vector>

namespace quillery::note_walk {

namespace {

// Calls visit(depth, node) for the notes of the subtree in tree order.
template <typename Visit>
void walk(const NotebookNode& top, bool includeTop, Visit visit) {
    std::size_t base = 0;
    if (includeTop) {
        visit(std::size_t{0}, top);
        base = 1;
    }
    std::vector<std::pair<const NotebookNode*, std::size_t>> stack{{&top, 0}};
    while (!stack.empty()) {
        auto& [node, next] = stack.back();
        if (next == node->children().size()) {
            stack.pop_back();
            continue;
        }
        const NotebookNode& child = *node->children()[next++];
        visit(stack.size() - 1 + base, child);
        stack.emplace_back(&child, 0);
    }
}

// A note's view over strings that live as long as the holder.
class NoteViewHolder {
public:
    NoteViewHolder(const Document& document, const NotebookNode& node)
        : m_identifier(node.identifier().toString()) {
        m_view.identifier = m_identifier;
        m_view.text = node.text();
        if (node.url())
            m_view.url = *node.url();
        if (const auto& key = node.imageIdentifier()) {
            m_key = key->toString();
            PictureView picture;
            picture.key = m_key;
            if (auto file = document.url(*key)) {
                picture.file = *file;
                m_extension = file->extension().string();
                if (!m_extension.empty())
                    m_extension.erase(0, 1);
                picture.fileExtension = m_extension;
            } else if (auto found = document.images().newImageData().find(*key);
                       found != document.images().newImageData().end()) {
                picture.bytes = found->second.data;
                picture.fileExtension = found->second.fileExtension;
            }
            m_view.picture = picture;
        }
    }
    const NoteView& view() const { return m_view; }

private:
    std::string m_identifier;
    std::string m_key;
    std::string m_extension;
    NoteView m_view;
};

} // namespace

void writeNotes(const Document& document, const NotebookNode& top, bool includeTop,
                OutlineWriter& writer) {
    walk(top, includeTop, [&](std::size_t depth, const NotebookNode& node) {
        writer.note(depth, NoteViewHolder(document, node).view());
    });
}

void writeOutline(const Outline& outline, OutlineWriter& writer) {
    for (const OutlineNote& note : outline.notes()) {
        NoteView view;
        view.text = note.text;
        if (note.url)
            view.url = *note.url;
        if (note.picture)
            view.picture = PictureView{
                {}, note.picture->file, note.picture->fileExtension, note.picture->bytes};
        writer.note(note.depth, view);
    }
}

Outline outlineFromNotes(const Document& document, const NotebookNode& top) {
    Outline outline;
    walk(top, true, [&](std::size_t depth, const NotebookNode& node) {
        const NoteViewHolder holder(document, node);
        const NoteView& view = holder.view();
        std::optional<OutlinePicture> picture;
        if (view.picture)
            picture = OutlinePicture{{view.picture->bytes.begin(), view.picture->bytes.end()},
                                     view.picture->file,
                                     std::string(view.picture->fileExtension)};
        outline.add(depth, node.text(), node.url(), std::move(picture));
    });
    return outline;
}

} // namespace quillery::note_walk
