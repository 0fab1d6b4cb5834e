#include "document/Document.h"

#include "document/Preferences.h"

#include <algorithm>

namespace quillery {

Document::Document(Preferences& preferences, const PictureCodec* pictureCodec, Clock clock)
    : m_clock(clock ? std::move(clock) : Clock(CurrentTime))
    , m_images(pictureCodec) {
    const std::optional<std::string> stored = preferences.string(kClientIdentifierKey);
    const std::optional<std::string> machine = preferences.machineIdentifier();
    const std::optional<std::string> madeOn = preferences.string(kClientMachineKey);
    const bool madeElsewhere = machine && madeOn && *madeOn != *machine;
    if (stored && !madeElsewhere) {
        m_clientIdentifier = Identifier(*stored);
    } else {
        m_clientIdentifier = Identifier::makeRandom();
        preferences.setString(kClientIdentifierKey, m_clientIdentifier.toString());
    }
    // Preferences written before machines were recorded belong to the machine that reads them.
    if (!stored || madeElsewhere || (machine && !madeOn)) {
        if (machine)
            preferences.setString(kClientMachineKey, *machine);
        preferences.synchronize();
    }
    m_rootNode = std::make_shared<NotebookNode>(rootIdentifier(), noParentIdentifier(), "");
    m_deletedRootNode =
        std::make_shared<NotebookNode>(deletedRootIdentifier(), noParentIdentifier(), "");
    addLookup(m_rootNode);
    addLookup(m_deletedRootNode);
}

Document::~Document() = default;

TimePoint Document::now() const {
    return m_clock();
}

NodePtr Document::node(const Identifier& identifier) const {
    const NodePtr* found = m_nodeLookup.findShared(identifier);
    return found ? *found : nullptr;
}

void Document::addLookup(NodePtr node) {
    m_nodeLookup.insertOrAssign(std::move(node));
}

bool Document::isNode(const NotebookNode& a, const NotebookNode& ancestorOf) const {
    const NotebookNode& b = ancestorOf;
    if (isRootIdentifier(a.identifier()))
        return true;
    if (isRootIdentifier(b.identifier()))
        return false;
    if (b.parentIdentifier() == a.identifier())
        return true;
    // A chain longer than the index has met a cycle, which a journal from elsewhere can contain;
    // the walk gives up rather than hang.
    const NotebookNode* current = &b;
    for (std::size_t steps = 0; steps <= m_nodeLookup.size(); ++steps) {
        const Identifier& parent = current->parentIdentifier();
        if (isRootIdentifier(parent) || parent == a.identifier())
            return parent == a.identifier();
        current = parentOf(*current);
        if (!current)
            return false;
    }
    return false;
}

bool Document::liesWithin(const NotebookNode& candidate, const Identifier& ancestor) const {
    const NotebookNode* current = &candidate;
    for (std::size_t steps = 0; steps <= m_nodeLookup.size(); ++steps) {
        if (current->identifier() == ancestor)
            return true;
        if (isRootIdentifier(current->identifier()))
            return false;
        current = parentOf(*current);
        if (!current)
            return false;
    }
    return false;
}

void Document::appendDiff(DocumentDiff diff) {
    // A record of now comes after everything applied, unless this machine's clock is behind.
    if (WholeSeconds(diff.timestamp) >= m_lastAppliedTime)
        setLastApplied(diff.timestamp, journalFileName(m_clientIdentifier));
    m_diffs.push_back(std::move(diff));
    touch();
}

void Document::touch() {
    ++m_changeCount;
}

Document::ObserverId Document::addObserver(Observer observer) {
    ObserverId id = m_nextObserverId++;
    m_observers.push_back({id, std::move(observer)});
    return id;
}

void Document::removeObserver(ObserverId id) {
    auto found = std::find_if(m_observers.begin(), m_observers.end(),
                              [id](const ObserverEntry& entry) { return entry.id == id; });
    if (found == m_observers.end())
        return;
    if (m_announcing > 0)
        found->observer = nullptr; // erased once the running announcement is over
    else
        m_observers.erase(found);
}

void Document::announce(const DocumentUpdate& update) {
    ++m_announcing;
    // Observers added during this announcement start with the next one.
    const std::size_t count = m_observers.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (!m_observers[i].observer)
            continue;
        // A copy, because the callback may add observers and so move the stored one.
        Observer observer = m_observers[i].observer;
        observer(update);
    }
    if (--m_announcing == 0)
        std::erase_if(m_observers, [](const ObserverEntry& entry) { return !entry.observer; });
}

Identifier Document::addImage(PicturePtr image, std::vector<std::uint8_t> originalData,
                              std::string fileExtension) {
    return m_images.addImage(std::move(image), std::move(originalData), std::move(fileExtension));
}

PicturePtr Document::image(const Identifier& key) const {
    return m_images.image(key);
}

std::optional<std::filesystem::path> Document::url(const Identifier& imageKey) const {
    return m_images.url(imageKey, m_fileLocation);
}

void Document::setFileLocation(std::optional<std::filesystem::path> location) {
    m_fileLocation = std::move(location);
}

} // namespace quillery
