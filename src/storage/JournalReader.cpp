#include "storage/JournalReader.h"

#include "base/Diagnostics.h"

#include <cstring>
#include <simdjson.h>
#include <string>

namespace quillery {

namespace ondemand = simdjson::ondemand;

namespace {

std::string_view trimTrailingSpace(std::string_view text) {
    while (!text.empty() && (text.back() == ' ' || text.back() == '\n' || text.back() == '\r' ||
                             text.back() == '\t'))
        text.remove_suffix(1);
    return text;
}

// How one record read.
enum class RecordOutcome { ok, rejected, notAnObject, badJson };

} // namespace

class JournalReader::Parser {
public:
    JournalReader::Outcome read(const char* data, std::size_t size, std::string_view journalName,
                                std::vector<DocumentDiff>& diffs);

private:
    // Why the journal could not be read; decided after a full syntax check, because the
    // incremental parser may meet a syntax error where a shape error was expected.
    StorageError failure(const char* data, std::size_t size, std::string_view journalName,
                         std::string_view shapeProblem);
    enum class DiffsOutcome { ok, rejected, failed };
    DiffsOutcome readDiffs(ondemand::value value, std::vector<DocumentDiff>& diffs,
                           std::string& problem);
    RecordOutcome readRecord(ondemand::value value, std::vector<DocumentDiff>& diffs, bool keep);
    enum class ValueKind { text, other, bad };
    // The text of a string value; `other` for any other value, `bad` for an invalid string.
    ValueKind text(ondemand::value& value, std::string_view& text);
    // The value as the payload keeps it; nothing when it is not valid JSON.
    std::optional<PlainValue> plainValue(ondemand::value value);
    // The exact JSON text of a value other than a text or truth value, checked in full.
    std::optional<std::string_view> checkedRawText(ondemand::value value, ondemand::json_type type);
    std::optional<TimePoint> stamp(std::string_view text);

    ondemand::parser m_parser;
    simdjson::dom::parser m_checker;
    std::string m_checkBuffer;
    std::vector<PlainDictionary::Entry> m_fields; // the payload of the record being read
    std::string m_lastStampText;
    std::optional<TimePoint> m_lastStamp;
};

std::optional<TimePoint> JournalReader::Parser::stamp(std::string_view text) {
    // Records come in bursts made within one second; their stamps repeat.
    if (text != m_lastStampText) {
        m_lastStampText.assign(text);
        m_lastStamp = DateFromString(text);
    }
    return m_lastStamp;
}

std::optional<std::string_view> JournalReader::Parser::checkedRawText(ondemand::value value,
                                                                      ondemand::json_type type) {
    std::string_view text;
    if (type == ondemand::json_type::array) {
        ondemand::array array;
        if (value.get_array().get(array) || array.raw_json().get(text))
            return std::nullopt;
    } else if (type == ondemand::json_type::object) {
        ondemand::object object;
        if (value.get_object().get(object) || object.raw_json().get(text))
            return std::nullopt;
    } else {
        text = value.raw_json_token();
    }
    text = trimTrailingSpace(text);
    // The incremental parser only skims skipped values; parse this one in full.
    m_checkBuffer.assign(text);
    m_checkBuffer.append(simdjson::SIMDJSON_PADDING, '\0');
    if (m_checker.parse(m_checkBuffer.data(), text.size(), false).error())
        return std::nullopt;
    return text;
}

JournalReader::Parser::ValueKind JournalReader::Parser::text(ondemand::value& value,
                                                             std::string_view& text) {
    std::string_view token = trimTrailingSpace(value.raw_json_token());
    if (token.empty() || token.front() != '"')
        return ValueKind::other;
    // Most texts hold no escape: take them straight from the input, which the first pass of the
    // parser has checked for valid UTF-8 and unescaped control characters already.
    if (token.size() >= 2 && token.back() == '"' && token.find('\\') == std::string_view::npos) {
        // Consumed all the same: the parser checks what follows a value only when the value
        // was taken, and skims over one left behind.
        ondemand::raw_json_string consumed;
        if (value.get_raw_json_string().get(consumed))
            return ValueKind::bad;
        text = token.substr(1, token.size() - 2);
        return ValueKind::text;
    }
    return value.get_string().get(text) ? ValueKind::bad : ValueKind::text;
}

std::optional<PlainValue> JournalReader::Parser::plainValue(ondemand::value value) {
    std::string_view textValue;
    switch (text(value, textValue)) {
    case ValueKind::text:
        return PlainValue(textValue);
    case ValueKind::bad:
        return std::nullopt;
    case ValueKind::other:
        break;
    }
    ondemand::json_type type;
    if (value.type().get(type))
        return std::nullopt;
    if (type == ondemand::json_type::boolean) {
        bool flag = false;
        if (value.get_bool().get(flag))
            return std::nullopt;
        return PlainValue(flag);
    }
    auto raw = checkedRawText(value, type);
    if (!raw)
        return std::nullopt;
    return PlainValue(RawJson{std::string(*raw)});
}

RecordOutcome JournalReader::Parser::readRecord(ondemand::value value,
                                                std::vector<DocumentDiff>& diffs, bool keep) {
    ondemand::object object;
    if (auto error = value.get_object().get(object))
        return error == simdjson::INCORRECT_TYPE ? RecordOutcome::notAnObject
                                                 : RecordOutcome::badJson;
    // A key given twice counts with its last value, as in the object's dictionary form.
    std::optional<TimePoint> timestamp;
    std::optional<Identifier> identifier;
    m_fields.clear();
    for (auto field : object) {
        std::string_view key;
        ondemand::value fieldValue;
        if (field.unescaped_key().get(key) || field.value().get(fieldValue))
            return RecordOutcome::badJson;
        bool isTimestamp = key == "timestamp";
        bool isIdentifier = !isTimestamp && key == "identifier";
        if (!isTimestamp && !isIdentifier) {
            std::string name(key);
            auto parsed = plainValue(fieldValue);
            if (!parsed)
                return RecordOutcome::badJson;
            if (keep)
                m_fields.emplace_back(std::move(name), std::move(*parsed));
            continue;
        }
        std::string_view text;
        ValueKind kind = this->text(fieldValue, text);
        if (kind == ValueKind::bad)
            return RecordOutcome::badJson;
        if (kind == ValueKind::other) {
            if (!plainValue(fieldValue))
                return RecordOutcome::badJson;
            if (isTimestamp)
                timestamp.reset();
            else
                identifier.reset();
            continue;
        }
        if (isTimestamp)
            timestamp = stamp(text);
        else
            identifier = Identifier(text);
    }
    if (!keep)
        return RecordOutcome::ok;
    if (!timestamp || !identifier)
        return RecordOutcome::rejected;
    const TimePoint stamped = *timestamp;
    // Sized to its keys: a million records kept with room to spare would cost more than the JSON
    // they came from.
    PlainDictionary payload;
    payload.reserve(m_fields.size());
    for (auto& [name, parsed] : m_fields)
        payload.set(std::move(name), std::move(parsed));
    diffs.emplace_back(stamped, std::move(*identifier), std::move(payload));
    return RecordOutcome::ok;
}

JournalReader::Parser::DiffsOutcome
JournalReader::Parser::readDiffs(ondemand::value value, std::vector<DocumentDiff>& diffs,
                                 std::string& problem) {
    diffs.clear();
    ondemand::array array;
    if (value.get_array().get(array)) {
        problem = "its \"diffs\" entry is not a list";
        return DiffsOutcome::failed;
    }
    bool rejected = false;
    std::size_t number = 0;
    for (auto element : array) {
        ++number;
        ondemand::value elementValue;
        if (element.get(elementValue)) {
            problem = "its \"diffs\" list is not valid JSON";
            return DiffsOutcome::failed;
        }
        switch (readRecord(elementValue, diffs, !rejected)) {
        case RecordOutcome::ok:
            break;
        case RecordOutcome::rejected:
            problem = "record " + std::to_string(number) +
                      " lacks a valid \"timestamp\" stamp or \"identifier\" text";
            rejected = true;
            diffs.clear();
            break;
        case RecordOutcome::notAnObject:
            problem = "element " + std::to_string(number) + " of \"diffs\" is not a record";
            return DiffsOutcome::failed;
        case RecordOutcome::badJson:
            problem = "its \"diffs\" list is not valid JSON";
            return DiffsOutcome::failed;
        }
    }
    return rejected ? DiffsOutcome::rejected : DiffsOutcome::ok;
}

JournalReader::Outcome JournalReader::Parser::read(const char* data, std::size_t size,
                                                   std::string_view journalName,
                                                   std::vector<DocumentDiff>& diffs) {
    std::vector<DocumentDiff> records;
    records.reserve(size / 160); // a record takes about 200 bytes pretty-printed
    std::string problem;
    auto fail = [&](std::string_view why) {
        return JournalReader::Outcome{failure(data, size, journalName, why)};
    };

    ondemand::document document;
    if (m_parser.iterate(data, size, size + simdjson::SIMDJSON_PADDING).get(document))
        return fail("it is not valid JSON");
    ondemand::object root;
    if (document.get_object().get(root))
        return fail("its top level is not an object");
    bool sawDiffs = false;
    bool rejected = false;
    for (auto field : root) {
        std::string_view key;
        ondemand::value value;
        if (field.unescaped_key().get(key) || field.value().get(value))
            return fail("it is not valid JSON");
        if (key == "diffs") {
            sawDiffs = true;
            auto outcome = readDiffs(value, records, problem);
            if (outcome == DiffsOutcome::failed)
                return fail(problem);
            rejected = outcome == DiffsOutcome::rejected;
        } else if (!plainValue(value)) {
            return fail("it is not valid JSON");
        }
    }
    // Anything after the top-level object is a syntax error.
    if (!document.current_location().error())
        return fail("it is not valid JSON");
    if (!sawDiffs)
        return fail("it has no \"diffs\" list");
    if (rejected) {
        // "Bad diff." is due only now that the whole journal is known to be JSON of the right
        // shape.
        auto outcome = fail(problem);
        outcome.rejectedRecord = true;
        return outcome;
    }
    diffs = std::move(records);
    return {};
}

StorageError JournalReader::Parser::failure(const char* data, std::size_t size,
                                            std::string_view journalName,
                                            std::string_view shapeProblem) {
    std::string name = "“" + std::string(journalName) + "”";
    if (auto error = m_checker.parse(data, size, false).error())
        return StorageError{std::string(storage_errors::kCocoaDomain), storage_errors::kInvalidJson,
                            "The journal " + name +
                                " is not valid JSON: " + simdjson::error_message(error)};
    return StorageError{
        std::string(storage_errors::kOSStatusDomain), storage_errors::kMalformedJournal,
        "The journal " + name + " is not a notebook journal: " + std::string(shapeProblem) + "."};
}

JournalReader::JournalReader()
    : m_parser(std::make_unique<Parser>()) {
}

JournalReader::~JournalReader() = default;

JournalReader::Outcome JournalReader::parse(const FileContents& contents,
                                            std::string_view journalName,
                                            std::vector<DocumentDiff>& diffs) {
    return m_parser->read(contents.data.get(), contents.size, journalName, diffs);
}

std::optional<StorageError> JournalReader::read(const FileContents& contents,
                                                std::string_view journalName,
                                                std::vector<DocumentDiff>& diffs) {
    Outcome outcome = parse(contents, journalName, diffs);
    if (outcome.rejectedRecord)
        diagnostics::writeLine("Bad diff.");
    return outcome.error;
}

std::optional<StorageError> JournalReader::read(std::string_view bytes,
                                                std::string_view journalName,
                                                std::vector<DocumentDiff>& diffs) {
    FileContents padded;
    padded.reserve(bytes.size());
    padded.size = bytes.size();
    std::memcpy(padded.data.get(), bytes.data(), bytes.size());
    std::memset(padded.data.get() + bytes.size(), 0, kFileContentsPadding);
    return read(padded, journalName, diffs);
}

} // namespace quillery
