#pragma once

#include "model/DateStamp.h"
#include "model/Identifier.h"
#include "model/PlainDictionary.h"

namespace quillery {

// The change record: the one unit in which a notebook is changed, journaled, merged and undone.
// Its journal form holds "timestamp" and "identifier" and, at the same level, every payload key.
struct DocumentDiff {
    TimePoint timestamp;
    Identifier identifier;
    PlainDictionary payload;

    DocumentDiff(TimePoint timestamp_, Identifier identifier_, PlainDictionary payload_)
        : timestamp(timestamp_)
        , identifier(std::move(identifier_))
        , payload(std::move(payload_)) {}
};

} // namespace quillery
