#pragma once

#include <QByteArray>
#include <QSize>
#include <QStringList>
#include <QVariantList>

#include <cstddef>
#include <functional>
#include <vector>

namespace quillery {

// What the app brings back at start, kept in the app's settings: the notebooks that were open
// when it last ended, where each notebook's window was and the widths the user gave its columns,
// and the size of the last window closed (for windows that have no place of their own yet).
class SessionState {
public:
    // Notebooks whose window places are kept; older ones make way.
    static constexpr std::size_t kMaximumPlaces = 20;

    QStringList openNotebooks() const;
    void setOpenNotebooks(const QStringList& paths);
    // The notebook being read while the app opens it, kept until the open ended either way: found
    // at start, it is one whose open ended the app.
    QString notebookBeingOpened() const;
    void setNotebookBeingOpened(const QString& path);

    // The window geometry (as QWidget::saveGeometry() gives it) last seen for the notebook;
    // empty when there is none.
    QByteArray windowGeometry(const QString& path) const;
    void setWindowGeometry(const QString& path, const QByteArray& geometry);
    // The column widths the user chose in the notebook's window, by depth (0: the default).
    std::vector<int> columnWidths(const QString& path) const;
    void setColumnWidths(const QString& path, const std::vector<int>& widths);

    // Invalid when no window was ever closed.
    QSize lastWindowSize() const;
    void setLastWindowSize(QSize size);

    void clear();

private:
    struct Place {
        QString path;
        QByteArray geometry;
        QVariantList columnWidths;
    };
    static std::vector<Place> readPlaces();
    // Changes the notebook's place (a new one when it has none) and makes it the newest.
    static void updatePlace(const QString& path, const std::function<void(Place&)>& change);
};

} // namespace quillery
