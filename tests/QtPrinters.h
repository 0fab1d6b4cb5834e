#pragma once

#include <QString>

#include <ostream>

// GoogleTest finds these by argument-dependent lookup, so failures show Qt values as text rather
// than as bytes.
QT_BEGIN_NAMESPACE
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
QT_END_NAMESPACE
