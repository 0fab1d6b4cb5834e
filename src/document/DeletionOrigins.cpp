#include "document/DeletionOrigins.h"

namespace quillery {

namespace {

std::optional<Identifier> identifierUnder(const PlainDictionary& payload, std::string_view key) {
    const PlainValue* value = payload.find(key);
    const Identifier* identifier = value ? value->textIdentifier() : nullptr;
    return identifier ? std::optional(*identifier) : std::nullopt;
}

} // namespace

bool DeletionOrigins::isKey(std::string_view key) {
    return key == kParentKey || key == kBeforeKey || key == kAfterKey;
}

void DeletionOrigins::describe(PlainDictionary& payload, const NotebookNode& parent,
                               const NotebookNode& child) {
    payload.set(std::string(kParentKey), parent.identifier());
    const auto& siblings = parent.children();
    for (std::size_t i = 0; i < siblings.size(); ++i) {
        if (siblings[i].get() != &child)
            continue;
        if (i > 0)
            payload.set(std::string(kAfterKey), siblings[i - 1]->identifier());
        if (i + 1 < siblings.size())
            payload.set(std::string(kBeforeKey), siblings[i + 1]->identifier());
        return;
    }
}

void DeletionOrigins::noteMoved(const Identifier& note, const Identifier& newParent,
                                const PlainDictionary& payload) {
    std::optional<Identifier> parent = identifierUnder(payload, kParentKey);
    if (!parent || newParent != deletedRootIdentifier()) {
        if (!m_origins.empty())
            m_origins.erase(note);
        return;
    }
    m_origins.insert_or_assign(note, DeletionOrigin{*parent, identifierUnder(payload, kBeforeKey),
                                                    identifierUnder(payload, kAfterKey)});
}

const DeletionOrigin* DeletionOrigins::find(const Identifier& note) const {
    const auto found = m_origins.find(note);
    return found == m_origins.end() ? nullptr : &found->second;
}

} // namespace quillery
