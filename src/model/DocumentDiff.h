#pragma once

#include "model/DateStamp.h"
#include "model/Identifier.h"
#include "model/PlainDictionary.h"

#include <optional>
#include <vector>

namespace quillery {

// The change record: the one unit in which a notebook is changed, journaled, merged and undone.
struct DocumentDiff {
    TimePoint timestamp;
    Identifier identifier;
    // Never set by this system and never written; empty when absent.
    Identifier groupIdentifier;
    PlainDictionary payload;

    // A record stamped with the current time.
    DocumentDiff(Identifier identifier, PlainDictionary payload);
    DocumentDiff(TimePoint timestamp, Identifier identifier, PlainDictionary payload);

    // The journal form: "timestamp" and "identifier", then every payload key at the same level
    // (a payload "timestamp" or "identifier" wins).
    PlainDictionary asPlainDictionary() const;
};

// Reads one journal record; gives nothing when "timestamp" is not a parsable stamp text or
// "identifier" is not a text. The payload is everything else.
std::optional<DocumentDiff> DocumentDiffFromJsonDictionary(PlainDictionary dictionary);
// Reads a journal's "diffs"; one bad record writes "Bad diff." and rejects the whole list.
std::optional<std::vector<DocumentDiff>>
DiffsFromPlainDiffs(std::vector<PlainDictionary> plainDiffs);

} // namespace quillery
