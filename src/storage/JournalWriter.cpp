#include "storage/JournalWriter.h"

#include "storage/JsonWriter.h"

#include <chrono>

namespace quillery {

namespace {

constexpr std::size_t kChunkSize = 1 << 20;

} // namespace

const std::string& JournalWriter::stampText(TimePoint time) {
    // A log's records come in bursts made within one second; their stamps repeat.
    auto second = std::chrono::floor<std::chrono::seconds>(time);
    if (m_lastStampText.empty() || second != m_lastStampSecond) {
        m_lastStampSecond = second;
        m_lastStampText = StringFromDate(time);
    }
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
