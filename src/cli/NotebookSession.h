#pragma once

#include "base/Diagnostics.h"
#include "document/Document.h"
#include "storage/HeaderPictureCodec.h"
#include "storage/JsonFilePreferences.h"
#include "storage/NotebookPackage.h"
#include "storage/PosixFileSystem.h"

#include <filesystem>
#include <iosfwd>
#include <memory>

namespace quillery::cli {

// One notebook as a command sees it: this installation's preferences (so its client identifier),
// a document, and the engine's diagnostic lines sent to the error stream for as long as the
// session lives. Failures are written to the error stream with their domain and code.
class NotebookSession {
public:
    explicit NotebookSession(std::ostream& err);
    ~NotebookSession();
    NotebookSession(const NotebookSession&) = delete;
    NotebookSession& operator=(const NotebookSession&) = delete;

    // From now on the documents of sessions that end are left to the process's exit instead of
    // being freed: freeing a large tree node by node can take longer than the command did.
    static void leaveDocumentsToExit();

    Document& document() { return *m_document; }

    bool open(const std::filesystem::path& package, package::PackageSummary* summary = nullptr);
    bool saveInPlace();
    bool saveTo(const std::filesystem::path& package);
    // Whether the note stands in the tree under one of the roots (a save merges other writers'
    // records, which may have taken its parent away).
    bool standsInTree(const Identifier& identifier) const;

private:
    bool report(const std::optional<StorageError>& error);

    std::ostream& m_err;
    diagnostics::ScopedSink m_sink;
    PosixFileSystem m_files;
    JsonFilePreferences m_preferences{m_files};
    HeaderPictureCodec m_codec;
    std::unique_ptr<Document> m_document;
};

} // namespace quillery::cli
