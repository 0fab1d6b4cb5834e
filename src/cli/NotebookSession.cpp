#include "cli/NotebookSession.h"

#include "outline/TerminalText.h"

#include <ostream>
#include <vector>

namespace quillery::cli {

NotebookSession::NotebookSession(std::ostream& err)
    : m_err(err)
    , m_sink([&err](std::string_view line) { err << terminal_text::shown(line) << '\n'; })
    , m_document(std::make_unique<Document>(m_preferences, &m_codec)) {
}

namespace {

// The documents left to the exit, kept reachable so that leak checkers do not count them.
std::vector<Document*>* g_leftToExit = nullptr;

} // namespace

NotebookSession::~NotebookSession() {
    if (g_leftToExit)
        g_leftToExit->push_back(m_document.release());
}

void NotebookSession::leaveDocumentsToExit() {
    if (!g_leftToExit)
        g_leftToExit = new std::vector<Document*>();
}

bool NotebookSession::report(const std::optional<StorageError>& error) {
    if (!error)
        return true;
    m_err << "quillery-cli: " << terminal_text::shown(error->message) << "\n  (" << error->domain
          << " " << error->code << ")\n";
    return false;
}

bool NotebookSession::open(const std::filesystem::path& package, package::PackageSummary* summary) {
    return report(package::read(*m_document, package, m_codec, m_files, summary));
}

bool NotebookSession::saveInPlace() {
    return report(package::saveInPlace(*m_document, m_files));
}

bool NotebookSession::saveTo(const std::filesystem::path& package) {
    return report(package::saveTo(*m_document, package, m_files));
}

bool NotebookSession::standsInTree(const Identifier& identifier) const {
    NodePtr node = m_document->node(identifier);
    const NotebookNode* current = node.get();
    for (std::size_t steps = 0; current && steps <= m_document->nodeCount(); ++steps) {
        if (current == m_document->rootNode().get() ||
            current == m_document->deletedRootNode().get())
            return true;
        current = current->parentNode();
    }
    return false;
}

} // namespace quillery::cli
