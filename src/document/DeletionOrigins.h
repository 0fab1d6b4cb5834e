#pragma once

#include "model/NotebookNode.h"

#include <optional>
#include <unordered_map>

namespace quillery {

// Where a deleted note stood before it was deleted: its parent and the siblings on either side.
struct DeletionOrigin {
    Identifier parent;
    std::optional<Identifier> before; // the sibling that followed it
    std::optional<Identifier> after;  // the sibling that preceded it
};

// The former places of deleted notes. A deletion record carries its note's place in three extra
// keys, so every installation that replays the record learns it, also one that deletes nothing
// itself; installations that do not know the keys keep them like any other unknown key.
class DeletionOrigins {
public:
    static constexpr std::string_view kParentKey = "deleted_from";
    static constexpr std::string_view kBeforeKey = "deleted_before";
    static constexpr std::string_view kAfterKey = "deleted_after";

    static bool isKey(std::string_view key);
    // Adds the keys that describe the child's place in its parent now.
    static void describe(PlainDictionary& payload, const NotebookNode& parent,
                         const NotebookNode& child);

    // Follows every record that gave a note a new parent: a deletion that carries the keys
    // teaches the note's origin, any other move makes it forget the one it had.
    void noteMoved(const Identifier& note, const Identifier& newParent,
                   const PlainDictionary& payload);
    const DeletionOrigin* find(const Identifier& note) const;

private:
    std::unordered_map<Identifier, DeletionOrigin, IdentifierHash> m_origins;
};

} // namespace quillery
