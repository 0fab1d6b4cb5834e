#include "model/DocumentDiff.h"

#include "base/Diagnostics.h"

namespace quillery {

DocumentDiff::DocumentDiff(Identifier identifier_, PlainDictionary payload_)
    : DocumentDiff(std::chrono::system_clock::now(), std::move(identifier_), std::move(payload_)) {
}

DocumentDiff::DocumentDiff(TimePoint timestamp_, Identifier identifier_, PlainDictionary payload_)
    : timestamp(timestamp_)
    , identifier(std::move(identifier_))
    , payload(std::move(payload_)) {
}

PlainDictionary DocumentDiff::asPlainDictionary() const {
    PlainDictionary dictionary;
    dictionary.set("timestamp", StringFromDate(timestamp));
    dictionary.set("identifier", identifier);
    dictionary.merge(payload);
    return dictionary;
}

std::optional<DocumentDiff> DocumentDiffFromJsonDictionary(PlainDictionary dictionary) {
    const PlainValue* stamp = dictionary.find("timestamp");
    if (!stamp || !stamp->isText())
        return std::nullopt;
    std::optional<TimePoint> timestamp = DateFromString(*stamp->text());
    if (!timestamp)
        return std::nullopt;
    const PlainValue* identifierValue = dictionary.find("identifier");
    if (!identifierValue || !identifierValue->isText())
        return std::nullopt;
    Identifier identifier = *identifierValue->identifier();
    dictionary.erase("timestamp");
    dictionary.erase("identifier");
    return DocumentDiff(*timestamp, std::move(identifier), std::move(dictionary));
}

std::optional<std::vector<DocumentDiff>>
DiffsFromPlainDiffs(std::vector<PlainDictionary> plainDiffs) {
    std::vector<DocumentDiff> diffs;
    diffs.reserve(plainDiffs.size());
    for (PlainDictionary& plain : plainDiffs) {
        std::optional<DocumentDiff> diff = DocumentDiffFromJsonDictionary(std::move(plain));
        if (!diff) {
            diagnostics::writeLine("Bad diff.");
            return std::nullopt;
        }
        diffs.push_back(std::move(*diff));
    }
    return diffs;
}

} // namespace quillery
