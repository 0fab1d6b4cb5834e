#include "storage/JournalWriter.h"

#include "storage/JsonWriter.h"

#include <chrono>

namespace quillery {

namespace {

constexpr std::size_t kChunkSize = 1 << 20;

} // namespace

const std::string& JournalWriter::stampText(TimePoint time) {
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

JournalWriter::Result JournalWriter::write(WritableFile& file, const Identifier& client,
                                           TimePoint savedAt,
                                           const std::vector<DocumentDiff>& diffs) {
    Result result;
    m_buffer.clear();
    m_buffer.reserve(kChunkSize + 64 * 1024);
    JsonWriter json(m_buffer);
    auto flush = [&] {
        if (!result.fileError && !m_buffer.empty())
            result.fileError = file.append(m_buffer);
        m_buffer.clear();
        return !result.fileError;
    };

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
    for (const DocumentDiff& diff : diffs) {
        // The record's journal form: "timestamp" and "identifier" first, then the payload, whose
        // own "timestamp" or "identifier" wins.
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
        if (m_buffer.size() >= kChunkSize && !flush())
            return result;
    }
    json.endArray();
    json.endObject();
    m_buffer += '\n';
    flush();
    result.invalidText = json.sawInvalidText();
    return result;
}

} // namespace quillery
