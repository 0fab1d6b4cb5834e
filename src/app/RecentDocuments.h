#pragma once

#include <QStringList>

namespace quillery {

// The notebooks opened or saved lately, newest first, kept in the app's settings so the list
// survives restarts and is shared by all windows.
class RecentDocuments {
public:
    static constexpr int kMaximum = 10;

    QStringList paths() const;
    // Moves the package to the front of the list.
    void note(const QString& path);
    void remove(const QString& path);
    void clear();

private:
    void store(const QStringList& paths);
};

} // namespace quillery
