#pragma once

#include "model/PlainDictionary.h"

#include <ostream>

namespace quillery {

// Lets GoogleTest show dictionaries in failure messages.
inline void PrintTo(const PlainValue& value, std::ostream* out) {
    if (auto text = value.text())
        *out << '"' << *text << '"';
    else if (auto flag = value.boolValue())
        *out << (*flag ? "true" : "false");
    else if (const RawJson* raw = value.rawJson())
        *out << raw->text;
}

inline void PrintTo(const PlainDictionary& dictionary, std::ostream* out) {
    *out << '{';
    for (const auto& [key, value] : dictionary) {
        *out << ' ' << key << ": ";
        PrintTo(value, out);
    }
    *out << " }";
}

} // namespace quillery
