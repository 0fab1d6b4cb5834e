#pragma once

#include "model/DateStamp.h"
#include "model/Identifier.h"
#include "model/PlainDictionary.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillery {

class NotebookNode;
using NodePtr = std::shared_ptr<NotebookNode>;

// Every notebook has two roots: "root" holds the notes, "deleted" the deleted notes. Both name
// "none" as their parent.
const Identifier& rootIdentifier();
const Identifier& deletedRootIdentifier();
const Identifier& noParentIdentifier();
bool isRootIdentifier(const Identifier& identifier);

// One note: a short text or a picture, with its child notes in display order. A node is shared
// by its parent's children, the document's index and the views; the document engine keeps the
// tree invariants, the node itself has no tree operations.
class NotebookNode {
public:
    NotebookNode(Identifier identifier, Identifier parentIdentifier, std::string text,
                 std::optional<Identifier> imageIdentifier = std::nullopt,
                 std::vector<NodePtr> children = {}, std::optional<std::string> url = std::nullopt);
    // Children that outlive the node stop pointing at it.
    ~NotebookNode();
    NotebookNode(const NotebookNode&) = delete;
    NotebookNode& operator=(const NotebookNode&) = delete;

    // A new note with a fresh random identifier.
    static NodePtr create(Identifier parentIdentifier, std::string text,
                          std::optional<Identifier> imageIdentifier = std::nullopt,
                          std::optional<std::string> url = std::nullopt);

    const Identifier& identifier() const { return m_identifier; }
    const std::optional<Identifier>& imageIdentifier() const;

    const Identifier& parentIdentifier() const { return m_parentIdentifier; }
    void setParentIdentifier(Identifier parentIdentifier);

    const std::string& text() const { return m_text; }
    void setText(std::string text);

    const std::optional<std::string>& url() const;

    const std::vector<NodePtr>& children() const { return m_children; }
    std::vector<NodePtr>& children() { return m_children; }
    // Where the child of that identifier stands among the children. `indexed`, the node the
    // document indexes under the identifier, is looked for by address first, which reads no
    // sibling; only when it is not there are the siblings' identifiers compared.
    std::optional<std::size_t> indexOfChild(const Identifier& identifier,
                                            const NotebookNode* indexed = nullptr) const;

    // The node whose children hold this one, set by the document engine while it keeps this node
    // there (null otherwise), so that walking up a large tree needs no index lookups. Never
    // points at a node that is gone.
    NotebookNode* parentNode() const { return m_parentNode; }
    void setParentNode(NotebookNode* parent) { m_parentNode = parent; }

    // True for a text note whose text is exactly empty; children and address don't count.
    bool isEmpty() const;

private:
    // What few notes have, kept apart so that every other note is smaller.
    struct Extras {
        std::optional<Identifier> imageIdentifier;
        std::optional<std::string> url;
    };

    // What applying a record reads comes first, so that it shares the object's first cache lines.
    Identifier m_identifier;
    Identifier m_parentIdentifier;
    NotebookNode* m_parentNode = nullptr;
    std::vector<NodePtr> m_children;
    std::string m_text;
    std::unique_ptr<const Extras> m_extras; // null for a text note without an address
};

// The node's dictionary form: "identifier", "text", "parent", and "image" and "url" when present.
PlainDictionary PlainDictionaryFromNotebookNode(const NotebookNode& node);
// Rebuilds a node from a dictionary that has "text" and "parent" texts; the identifier comes from
// the caller (the record), never from the dictionary.
NodePtr NotebookNodeFromPlainDictionary(const Identifier& identifier,
                                        const PlainDictionary& dictionary);

} // namespace quillery
