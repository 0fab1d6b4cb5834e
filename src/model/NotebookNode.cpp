#include "model/NotebookNode.h"

namespace quillery {

const Identifier& rootIdentifier() {
    static const Identifier root("root");
    return root;
}

const Identifier& deletedRootIdentifier() {
    static const Identifier deleted("deleted");
    return deleted;
}

const Identifier& noParentIdentifier() {
    static const Identifier none("none");
    return none;
}

bool isRootIdentifier(const Identifier& identifier) {
    return identifier == rootIdentifier() || identifier == deletedRootIdentifier();
}

NotebookNode::NotebookNode(Identifier identifier, Identifier parentIdentifier, std::string text,
                           std::optional<Identifier> imageIdentifier, std::vector<NodePtr> children,
                           std::optional<std::string> url)
    : m_identifier(std::move(identifier))
    , m_parentIdentifier(std::move(parentIdentifier))
    , m_children(std::move(children))
    , m_text(std::move(text)) {
    if (imageIdentifier || url)
        m_extras =
            std::make_unique<const Extras>(Extras{std::move(imageIdentifier), std::move(url)});
}

NotebookNode::~NotebookNode() {
    // A node held by nothing else is emptied of its children before it goes, so a chain of any
    // depth is freed one node at a time rather than by a destructor call per level.
    std::vector<NodePtr> pending = std::move(m_children);
    for (const NodePtr& child : pending)
        if (child->m_parentNode == this)
            child->m_parentNode = nullptr;
    while (!pending.empty()) {
        NodePtr node = std::move(pending.back());
        pending.pop_back();
        if (node.use_count() != 1)
            continue;
        for (NodePtr& child : node->m_children) {
            if (child->m_parentNode == node.get())
                child->m_parentNode = nullptr;
            pending.push_back(std::move(child));
        }
        node->m_children.clear();
    }
}

NodePtr NotebookNode::create(Identifier parentIdentifier, std::string text,
                             std::optional<Identifier> imageIdentifier,
                             std::optional<std::string> url) {
    return std::make_shared<NotebookNode>(Identifier::makeRandom(), std::move(parentIdentifier),
                                          std::move(text), std::move(imageIdentifier),
                                          std::vector<NodePtr>{}, std::move(url));
}

const std::optional<Identifier>& NotebookNode::imageIdentifier() const {
    static const std::optional<Identifier> none;
    return m_extras ? m_extras->imageIdentifier : none;
}

const std::optional<std::string>& NotebookNode::url() const {
    static const std::optional<std::string> none;
    return m_extras ? m_extras->url : none;
}

void NotebookNode::setParentIdentifier(Identifier parentIdentifier) {
    m_parentIdentifier = std::move(parentIdentifier);
}

void NotebookNode::setText(std::string text) {
    m_text = std::move(text);
}

std::optional<std::size_t> NotebookNode::indexOfChild(const Identifier& identifier,
                                                      const NotebookNode* indexed) const {
    if (indexed)
        for (std::size_t i = 0; i < m_children.size(); ++i)
            if (m_children[i].get() == indexed)
                return i;
    for (std::size_t i = 0; i < m_children.size(); ++i)
        if (m_children[i]->identifier() == identifier)
            return i;
    return std::nullopt;
}

bool NotebookNode::isEmpty() const {
    return !imageIdentifier() && m_text.empty();
}

PlainDictionary PlainDictionaryFromNotebookNode(const NotebookNode& node) {
    PlainDictionary dictionary;
    dictionary.set("identifier", node.identifier());
    dictionary.set("text", node.text());
    dictionary.set("parent", node.parentIdentifier());
    if (node.imageIdentifier())
        dictionary.set("image", *node.imageIdentifier());
    if (node.url())
        dictionary.set("url", *node.url());
    return dictionary;
}

NodePtr NotebookNodeFromPlainDictionary(const Identifier& identifier,
                                        const PlainDictionary& dictionary) {
    const PlainValue* text = dictionary.find("text");
    if (!text || !text->isText())
        return nullptr;
    const PlainValue* parent = dictionary.find("parent");
    if (!parent || !parent->isText())
        return nullptr;
    std::optional<Identifier> image;
    if (const PlainValue* value = dictionary.find("image"))
        image = value->identifier();
    std::optional<std::string> url;
    if (const PlainValue* value = dictionary.find("url"))
        url = value->text();
    return std::make_shared<NotebookNode>(identifier, *parent->identifier(), *text->text(), image,
                                          std::vector<NodePtr>{}, std::move(url));
}

} // namespace quillery
