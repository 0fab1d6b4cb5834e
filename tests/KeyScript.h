#pragma once

#include <QApplication>
#include <QKeySequence>
#include <QTest>

#include <gtest/gtest.h>

namespace quillery::testing {

// Presses the keys named, separated by spaces ("Down Ctrl+N Alt+Shift+Left"), each on whatever
// has the keyboard focus when it is pressed, as the keyboard would.
inline void pressKeys(const char* keys) {
    for (const QString& key :
         QString::fromLatin1(keys).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        QWidget* target = QApplication::focusWidget();
        ASSERT_NE(target, nullptr) << "no focus for " << key.toStdString();
        QTest::keySequence(target, QKeySequence::fromString(key));
    }
}

} // namespace quillery::testing
