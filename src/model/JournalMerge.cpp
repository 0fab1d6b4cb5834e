#include "model/JournalMerge.h"

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <utility>

namespace quillery {

namespace {

std::size_t valueHash(const PlainValue& value) {
    if (const Identifier* text = value.textIdentifier())
        return text->hash();
    if (const RawJson* json = value.rawJson())
        return std::hash<std::string>{}(json->text);
    return value.boolValue().value_or(false) ? 1 : 2;
}

// Independent of key order, like the payload's equality.
std::size_t contentHash(const DocumentDiff& diff) {
    std::size_t hash =
        diff.identifier.hash() ^
        static_cast<std::size_t>(WholeSeconds(diff.timestamp).time_since_epoch().count());
    for (const auto& [key, value] : diff.payload)
        hash += std::hash<std::string>{}(key)*31 + valueHash(value);
    return hash;
}

struct Tagged {
    DocumentDiff diff;
    std::size_t journal;
};

// Keeps, among records of one second, each record as often as the journal that holds it most.
void keepEachOnce(std::vector<Tagged>& group, std::vector<DocumentDiff>& out) {
    struct Seen {
        std::size_t first;
        std::size_t most = 0;
        // How often each journal holding the record holds it; few do, of however many copies.
        std::unordered_map<std::size_t, std::size_t> perJournal;
    };
    std::unordered_multimap<std::size_t, Seen> seen;
    for (std::size_t i = 0; i < group.size(); ++i) {
        const std::size_t hash = contentHash(group[i].diff);
        Seen* entry = nullptr;
        auto [from, to] = seen.equal_range(hash);
        for (auto it = from; it != to && !entry; ++it)
            if (sameRecord(group[it->second.first].diff, group[i].diff))
                entry = &it->second;
        if (!entry)
            entry = &seen.emplace(hash, Seen{i, 0, {}})->second;
        const std::size_t count = ++entry->perJournal[group[i].journal];
        if (count > entry->most) {
            entry->most = count;
            out.push_back(group[i].diff);
        }
    }
}

} // namespace

std::string journalFileName(const Identifier& client) {
    std::string name = client.toString();
    name += kJournalMarker;
    return name;
}

JournalMark markOf(const std::vector<DocumentDiff>& diffs, std::size_t count) {
    JournalMark mark{count, 0};
    for (std::size_t i = 0; i < count && i < diffs.size(); ++i)
        mark.hash = (mark.hash ^ diffs[i].identifier.hash() ^
                     static_cast<std::uint64_t>(
                         WholeSeconds(diffs[i].timestamp).time_since_epoch().count())) *
                    0x100000001B3ull;
    return mark;
}

std::vector<DocumentDiff>
MergedDiffsFromArrayOfDiffs(std::vector<std::vector<DocumentDiff>> diffs) {
    auto earlier = [](const DocumentDiff& a, const DocumentDiff& b) {
        return a.timestamp < b.timestamp;
    };
    std::size_t total = 0;
    bool inTimeOrder = true;
    for (const auto& journal : diffs) {
        total += journal.size();
        inTimeOrder = inTimeOrder && std::is_sorted(journal.begin(), journal.end(), earlier);
    }
    std::vector<DocumentDiff> merged;
    merged.reserve(total);
    if (!inTimeOrder) {
        for (auto& journal : diffs)
            std::move(journal.begin(), journal.end(), std::back_inserter(merged));
        std::stable_sort(merged.begin(), merged.end(), earlier);
        return merged;
    }
    // The journals ordered by their next record, ties going to the earlier journal, so that many
    // journals merge in n log k steps; each journal gives its whole run of records that come
    // before every other journal's next one at once.
    using Head = std::pair<TimePoint, std::size_t>;
    const auto later = std::greater<Head>();
    std::vector<Head> heads;
    for (std::size_t j = 0; j < diffs.size(); ++j)
        if (!diffs[j].empty())
            heads.emplace_back(diffs[j].front().timestamp, j);
    std::make_heap(heads.begin(), heads.end(), later);
    std::vector<std::size_t> next(diffs.size(), 0);
    while (!heads.empty()) {
        std::pop_heap(heads.begin(), heads.end(), later);
        const std::size_t j = heads.back().second;
        heads.pop_back();
        std::vector<DocumentDiff>& journal = diffs[j];
        do
            merged.push_back(std::move(journal[next[j]++]));
        while (next[j] < journal.size() &&
               (heads.empty() || Head(journal[next[j]].timestamp, j) < heads.front()));
        if (next[j] < journal.size()) {
            heads.emplace_back(journal[next[j]].timestamp, j);
            std::push_heap(heads.begin(), heads.end(), later);
        }
    }
    return merged;
}

bool sameRecord(const DocumentDiff& a, const DocumentDiff& b) {
    return WholeSeconds(a.timestamp) == WholeSeconds(b.timestamp) && a.identifier == b.identifier &&
           a.payload == b.payload;
}

std::vector<DocumentDiff> UnionOfJournals(std::vector<std::vector<DocumentDiff>> journals) {
    if (journals.size() == 1)
        return std::move(journals.front());
    std::vector<Tagged> tagged;
    for (std::size_t j = 0; j < journals.size(); ++j)
        for (DocumentDiff& diff : journals[j])
            tagged.push_back({std::move(diff), j});
    std::stable_sort(tagged.begin(), tagged.end(), [](const Tagged& a, const Tagged& b) {
        return WholeSeconds(a.diff.timestamp) < WholeSeconds(b.diff.timestamp);
    });
    std::vector<DocumentDiff> merged;
    merged.reserve(tagged.size());
    std::vector<Tagged> group;
    for (std::size_t i = 0; i < tagged.size(); ++i) {
        group.push_back(std::move(tagged[i]));
        if (i + 1 < tagged.size() && WholeSeconds(tagged[i + 1].diff.timestamp) ==
                                         WholeSeconds(group.front().diff.timestamp))
            continue;
        keepEachOnce(group, merged);
        group.clear();
    }
    return merged;
}

std::vector<DocumentDiff> RecordsMissingFrom(const std::vector<DocumentDiff>& records,
                                             const std::vector<DocumentDiff>& held) {
    if (records.empty())
        return {};
    // Only held records of the same seconds can match, and those are usually a recent few.
    auto [earliest, latest] = std::minmax_element(
        records.begin(), records.end(),
        [](const DocumentDiff& a, const DocumentDiff& b) { return a.timestamp < b.timestamp; });
    const TimePoint from = WholeSeconds(earliest->timestamp);
    const TimePoint to = WholeSeconds(latest->timestamp);
    std::unordered_multimap<std::size_t, const DocumentDiff*> unmatched;
    for (const DocumentDiff& diff : held)
        if (WholeSeconds(diff.timestamp) >= from && WholeSeconds(diff.timestamp) <= to)
            unmatched.emplace(contentHash(diff), &diff);
    std::vector<DocumentDiff> missing;
    for (const DocumentDiff& diff : records) {
        auto [first, last] = unmatched.equal_range(contentHash(diff));
        auto match = std::find_if(
            first, last, [&](const auto& entry) { return sameRecord(*entry.second, diff); });
        if (match == last)
            missing.push_back(diff);
        else
            unmatched.erase(match);
    }
    return missing;
}

} // namespace quillery
