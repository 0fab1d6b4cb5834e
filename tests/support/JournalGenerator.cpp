#include "JournalGenerator.h"

#include "model/NotebookNode.h"

#include <algorithm>
#include <string>

namespace quillery::testing_support {

namespace {

constexpr std::uint32_t kRoot = 0;
constexpr std::uint32_t kDeletedRoot = 1;
// Until the tree has this many notes, every record makes one.
constexpr std::size_t kFirstNotes = 50;

} // namespace

JournalGenerator::JournalGenerator(std::uint64_t seed, RecordMix mix, std::size_t maxChildren)
    : m_random(seed)
    , m_mix(mix)
    , m_maxChildren(maxChildren) {
    m_nodes.push_back({rootIdentifier(), kRoot, {}});
    m_nodes.push_back({deletedRootIdentifier(), kDeletedRoot, {}});
}

std::vector<std::vector<DocumentDiff>>
JournalGenerator::generate(std::size_t count, std::size_t journals, TimePoint start,
                           std::size_t perSecond, std::size_t turn) {
    std::vector<std::vector<DocumentDiff>> out(journals);
    for (auto& journal : out)
        journal.reserve(count / journals + turn);
    for (std::size_t i = 0; i < count; ++i) {
        const TimePoint stamp = start + std::chrono::seconds(i / perSecond);
        out[(i / turn) % journals].push_back(makeRecord(stamp));
    }
    return out;
}

std::pair<std::size_t, double> JournalGenerator::depth() const {
    std::size_t deepest = 0;
    double total = 0;
    for (std::uint32_t i = 2; i < m_nodes.size(); ++i) {
        std::size_t level = 0;
        for (std::uint32_t at = i; at > kDeletedRoot; at = m_nodes[at].parent)
            ++level;
        deepest = std::max(deepest, level);
        total += static_cast<double>(level);
    }
    return {deepest, total / static_cast<double>(m_nodes.size())};
}

DocumentDiff JournalGenerator::makeRecord(TimePoint stamp) {
    ++m_made;
    unsigned roll = static_cast<unsigned>(m_random() % 100);
    if (m_nodes.size() < kFirstNotes || roll < m_mix.creations)
        return create(stamp);
    roll -= m_mix.creations;
    if (roll < m_mix.moves)
        if (auto diff = reparent(stamp, pickParent()))
            return *diff;
    roll -= std::min(roll, m_mix.moves);
    if (roll < m_mix.reorders)
        if (auto diff = reorder(stamp))
            return *diff;
    roll -= std::min(roll, m_mix.reorders);
    if (roll < m_mix.deletions)
        if (auto diff = reparent(stamp, kDeletedRoot))
            return *diff;
    return editText(stamp);
}

DocumentDiff JournalGenerator::create(TimePoint stamp) {
    const std::uint32_t parent = pickParent();
    const auto index = static_cast<std::uint32_t>(m_nodes.size());
    m_nodes.push_back({randomIdentifier(), parent, {}});
    PlainDictionary payload;
    payload.set("text", "Note " + std::to_string(m_made) + " of the day");
    payload.set("parent", m_nodes[parent].identifier);
    insertChild(parent, index, payload);
    return DocumentDiff(stamp, m_nodes[index].identifier, std::move(payload));
}

DocumentDiff JournalGenerator::editText(TimePoint stamp) {
    return DocumentDiff(stamp, m_nodes[pickNote()].identifier,
                        {{"text", "Edited at " + std::to_string(m_made)}});
}

std::optional<DocumentDiff> JournalGenerator::reorder(TimePoint stamp) {
    const std::uint32_t moving = pickNote();
    auto& siblings = m_nodes[m_nodes[moving].parent].children;
    if (siblings.size() < 2 || m_nodes[moving].parent == kDeletedRoot)
        return std::nullopt;
    std::erase(siblings, moving);
    const std::size_t at = m_random() % (siblings.size() + 1);
    PlainDictionary payload;
    if (at < siblings.size())
        payload.set("before", m_nodes[siblings[at]].identifier);
    else
        payload.set("after", m_nodes[siblings.back()].identifier);
    siblings.insert(siblings.begin() + static_cast<std::ptrdiff_t>(at), moving);
    return DocumentDiff(stamp, m_nodes[moving].identifier, std::move(payload));
}

std::optional<DocumentDiff> JournalGenerator::reparent(TimePoint stamp, std::uint32_t destination) {
    const std::uint32_t moving = pickNote();
    if (m_nodes[moving].parent == kDeletedRoot || liesWithin(destination, moving))
        return std::nullopt;
    std::erase(m_nodes[m_nodes[moving].parent].children, moving);
    m_nodes[moving].parent = destination;
    PlainDictionary payload;
    payload.set("parent", m_nodes[destination].identifier);
    insertChild(destination, moving, payload);
    return DocumentDiff(stamp, m_nodes[moving].identifier, std::move(payload));
}

// Appends, or a third of the time places the note before a random sibling.
void JournalGenerator::insertChild(std::uint32_t parent, std::uint32_t child,
                                   PlainDictionary& payload) {
    auto& children = m_nodes[parent].children;
    std::size_t at = children.size();
    if (!children.empty() && parent != kDeletedRoot && m_random() % 3 == 0) {
        at = m_random() % children.size();
        payload.set("before", m_nodes[children[at]].identifier);
    }
    children.insert(children.begin() + static_cast<std::ptrdiff_t>(at), child);
}

bool JournalGenerator::liesWithin(std::uint32_t candidate, std::uint32_t ancestor) const {
    while (candidate > kDeletedRoot) {
        if (candidate == ancestor)
            return true;
        candidate = m_nodes[candidate].parent;
    }
    return candidate == ancestor;
}

// Recent notes are favoured, which grows long chains; no parent gets more than the cap.
std::uint32_t JournalGenerator::pickParent() {
    for (;;) {
        std::uint32_t candidate;
        if (m_nodes.size() > 64 && m_random() % 2 == 0)
            candidate = static_cast<std::uint32_t>(m_nodes.size() - 1 - m_random() % 64);
        else
            candidate = static_cast<std::uint32_t>(m_random() % m_nodes.size());
        if (candidate != kDeletedRoot && m_nodes[candidate].children.size() < m_maxChildren)
            return candidate;
    }
}

std::uint32_t JournalGenerator::pickNote() {
    return static_cast<std::uint32_t>(2 + m_random() % (m_nodes.size() - 2));
}

Identifier JournalGenerator::randomIdentifier() {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    char text[37] = "xxxxxxxx-xxxx-4xxx-8xxx-xxxxxxxxxxxx";
    for (char& c : text)
        if (c == 'x')
            c = kDigits[m_random() % 16];
    return Identifier(std::string_view(text, 36));
}

} // namespace quillery::testing_support
