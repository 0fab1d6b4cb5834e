#include "storage/JournalWriter.h"

#include "storage/JsonWriter.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <future>

namespace quillery {

namespace {

// Blocks being formatted ahead of the one being written: one per processor of a small machine.
constexpr std::size_t kBlocksAhead = 2;

// The text of a run of records, as it stands inside the journal's "diffs" list.
struct FormattedBlock {
    std::string text;
    bool invalidText = false;
};

class BlockFormatter {
public:
    FormattedBlock format(const DocumentDiff* begin, const DocumentDiff* end,
                          JsonWriter::Nesting nesting);

private:
    const std::string& stampText(TimePoint time);
    void record(JsonWriter& json, const DocumentDiff& diff);

    std::chrono::sys_seconds m_lastStampSecond{};
    std::chrono::sys_days m_lastStampDay{};
    std::string m_lastStampText;
};

const std::string& BlockFormatter::stampText(TimePoint time) {
    using namespace std::chrono;
    auto second = floor<seconds>(time);
    if (!m_lastStampText.empty() && second == m_lastStampSecond)
        return m_lastStampText;
    auto day = floor<days>(second);
    m_lastStampSecond = second;
    // Stamps of one day differ only in "HH:mm:ss" (after "yyyy-MM-ddT"): only the first stamp of
    // each day is made by StringFromDate, the others by changing those digits.
    constexpr std::size_t kTimeAt = 11;
    if (m_lastStampText.empty() || day != m_lastStampDay || m_lastStampText.size() < kTimeAt + 8 ||
        m_lastStampText[kTimeAt - 1] != 'T') {
        m_lastStampDay = day;
        m_lastStampText = StringFromDate(time);
        return m_lastStampText;
    }
    hh_mm_ss timeOfDay(second - day);
    auto twoDigits = [&](std::size_t at, long value) {
        m_lastStampText[at] = static_cast<char>('0' + value / 10);
        m_lastStampText[at + 1] = static_cast<char>('0' + value % 10);
    };
    twoDigits(kTimeAt, timeOfDay.hours().count());
    twoDigits(kTimeAt + 3, timeOfDay.minutes().count());
    twoDigits(kTimeAt + 6, static_cast<long>(timeOfDay.seconds().count()));
    return m_lastStampText;
}

// The record's journal form: "timestamp" and "identifier" first, then the payload, whose own
// "timestamp" or "identifier" wins.
void BlockFormatter::record(JsonWriter& json, const DocumentDiff& diff) {
    const PlainValue* payloadStamp = diff.payload.find("timestamp");
    const PlainValue* payloadIdentifier = diff.payload.find("identifier");
    json.beginObject();
    json.key("timestamp");
    if (payloadStamp)
        json.value(*payloadStamp);
    else
        json.string(stampText(diff.timestamp));
    json.key("identifier");
    if (payloadIdentifier)
        json.value(*payloadIdentifier);
    else
        json.identifier(diff.identifier);
    for (const auto& [key, value] : diff.payload) {
        if (key == "timestamp" || key == "identifier")
            continue;
        json.key(key);
        json.value(value);
    }
    json.endObject();
}

FormattedBlock BlockFormatter::format(const DocumentDiff* begin, const DocumentDiff* end,
                                      JsonWriter::Nesting nesting) {
    FormattedBlock block;
    // Pretty-printed records take about 200 bytes each.
    block.text.reserve(static_cast<std::size_t>(end - begin) * 256);
    JsonWriter json(block.text, std::move(nesting));
    for (const DocumentDiff* diff = begin; diff != end; ++diff)
        record(json, *diff);
    block.invalidText = json.sawInvalidText();
    return block;
}

} // namespace

JournalWriter::JournalWriter(std::size_t recordsPerBlock)
    : m_recordsPerBlock(std::max<std::size_t>(1, recordsPerBlock)) {
}

JournalWriter::Result JournalWriter::write(WritableFile& file, const Identifier& client,
                                           TimePoint savedAt,
                                           const std::vector<DocumentDiff>& diffs) {
    Result result;
    std::string text;
    JsonWriter json(text);
    json.beginObject();
    json.key("schema");
    json.string("1.0");
    json.key("version");
    json.integer(static_cast<std::int64_t>(diffs.size()));
    json.key("client");
    json.identifier(client);
    json.key("last_modified");
    json.string(StringFromDate(savedAt));
    json.key("diffs");
    json.beginArray();
    result.fileError = file.append(text);

    // Every block but the first continues a list that already holds records.
    const JsonWriter::Nesting first = json.nesting();
    JsonWriter::Nesting later = first;
    later.back() = 1;
    std::deque<std::future<FormattedBlock>> pending;
    std::size_t next = 0;
    auto launch = [&] {
        const std::size_t end = std::min(diffs.size(), next + m_recordsPerBlock);
        const DocumentDiff* from = diffs.data() + next;
        const DocumentDiff* to = diffs.data() + end;
        // Formatted here instead when no thread can be started.
        pending.push_back(std::async(std::launch::async | std::launch::deferred,
                                     [from, to, nesting = next == 0 ? first : later] {
                                         return BlockFormatter().format(from, to, nesting);
                                     }));
        next = end;
    };
    while (!result.fileError && next < diffs.size() && pending.size() < kBlocksAhead)
        launch();
    while (!result.fileError && !pending.empty()) {
        FormattedBlock block = pending.front().get();
        pending.pop_front();
        if (next < diffs.size())
            launch();
        result.invalidText = result.invalidText || block.invalidText;
        result.fileError = file.append(block.text);
    }
    // A failed write leaves the blocks still being formatted to finish before the records they
    // read may go.
    pending.clear();
    if (result.fileError)
        return result;

    text.clear();
    if (!diffs.empty())
        json.setNesting(later);
    json.endArray();
    json.endObject();
    text += '\n';
    result.fileError = file.append(text);
    return result;
}

} // namespace quillery
