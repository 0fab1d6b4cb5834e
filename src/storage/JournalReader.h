#pragma once

#include "model/DocumentDiff.h"
#include "storage/FileSystem.h"
#include "storage/StorageError.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace quillery {

// Reads the records of journal files. One reader is meant to be reused for all journals of an
// open, so its parser buffers are allocated once.
//
// Reading follows the journal format: the top level must be an object whose "diffs" entry is an
// array of objects, each a record with a "timestamp" stamp text and an "identifier" text; every
// other key of a record is its payload, kept with its value (texts and truth values as such,
// anything else as its exact JSON text). The other top-level keys are checked for JSON syntax
// only. One malformed record rejects the whole journal and writes "Bad diff.".
class JournalReader {
public:
    JournalReader();
    ~JournalReader();
    JournalReader(const JournalReader&) = delete;
    JournalReader& operator=(const JournalReader&) = delete;

    // Parses bytes that are followed by at least kFileContentsPadding readable bytes. On success
    // the records replace the contents of `diffs`. `journalName` names the file in errors.
    std::optional<StorageError> read(const FileContents& contents, std::string_view journalName,
                                     std::vector<DocumentDiff>& diffs);
    // The same for bytes without that padding (they are copied once).
    std::optional<StorageError> read(std::string_view bytes, std::string_view journalName,
                                     std::vector<DocumentDiff>& diffs);

    struct Outcome {
        std::optional<StorageError> error;
        // The journal was rejected for a malformed record: "Bad diff." is due.
        bool rejectedRecord = false;
    };
    // read() without writing the diagnostic line, for readers on other threads than the one
    // the diagnostics belong to.
    Outcome parse(const FileContents& contents, std::string_view journalName,
                  std::vector<DocumentDiff>& diffs);

private:
    class Parser;
    std::unique_ptr<Parser> m_parser;
};

} // namespace quillery
