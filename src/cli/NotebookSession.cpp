#include "cli/NotebookSession.h"

#include <ostream>

namespace quillery::cli {

NotebookSession::NotebookSession(std::ostream& err)
    : m_err(err)
    , m_sink([&err](std::string_view line) { err << line << '\n'; })
    , m_document(m_preferences, &m_codec) {
}

bool NotebookSession::report(const std::optional<StorageError>& error) {
    if (!error)
        return true;
    m_err << "quillery-cli: " << error->message << "\n  (" << error->domain << " " << error->code
          << ")\n";
    return false;
}

bool NotebookSession::open(const std::filesystem::path& package, package::PackageSummary* summary) {
    PosixFileSystem files;
    return report(package::read(m_document, package, m_codec, files, summary));
}

bool NotebookSession::saveInPlace() {
    return report(package::saveInPlace(m_document));
}

bool NotebookSession::saveTo(const std::filesystem::path& package) {
    return report(package::saveTo(m_document, package));
}

} // namespace quillery::cli
