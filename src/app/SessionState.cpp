#include "app/SessionState.h"

#include <QSettings>

#include <algorithm>

namespace quillery {

namespace {

const QString kOpenNotebooksKey = QStringLiteral("session/openNotebooks");
const QString kLastWindowSizeKey = QStringLiteral("session/lastWindowSize");
// An array of paths and geometries, the notebook closed most recently first. Paths are not keys
// of their own because a settings key cannot hold every character a path can.
const QString kPlacesKey = QStringLiteral("session/windowPlaces");
const QString kPathField = QStringLiteral("path");
const QString kGeometryField = QStringLiteral("geometry");

} // namespace

std::vector<SessionState::Place> SessionState::readPlaces() {
    QSettings settings;
    std::vector<Place> places(static_cast<std::size_t>(settings.beginReadArray(kPlacesKey)));
    for (std::size_t i = 0; i < places.size(); ++i) {
        settings.setArrayIndex(static_cast<int>(i));
        places[i] = {settings.value(kPathField).toString(),
                     settings.value(kGeometryField).toByteArray()};
    }
    settings.endArray();
    return places;
}

QStringList SessionState::openNotebooks() const {
    return QSettings().value(kOpenNotebooksKey).toStringList();
}

void SessionState::setOpenNotebooks(const QStringList& paths) {
    QSettings().setValue(kOpenNotebooksKey, paths);
}

QByteArray SessionState::windowGeometry(const QString& path) const {
    const auto places = readPlaces();
    const auto found = std::ranges::find(places, path, &Place::path);
    return found == places.end() ? QByteArray() : found->geometry;
}

void SessionState::setWindowGeometry(const QString& path, const QByteArray& geometry) {
    auto places = readPlaces();
    std::erase_if(places, [&path](const Place& place) { return place.path == path; });
    places.insert(places.begin(), Place{path, geometry});
    places.resize(std::min<std::size_t>(places.size(), kMaximumPlaces));
    QSettings settings;
    settings.remove(kPlacesKey);
    settings.beginWriteArray(kPlacesKey, static_cast<int>(places.size()));
    for (std::size_t i = 0; i < places.size(); ++i) {
        settings.setArrayIndex(static_cast<int>(i));
        settings.setValue(kPathField, places[i].path);
        settings.setValue(kGeometryField, places[i].geometry);
    }
    settings.endArray();
}

QSize SessionState::lastWindowSize() const {
    return QSettings().value(kLastWindowSizeKey).toSize();
}

void SessionState::setLastWindowSize(QSize size) {
    QSettings().setValue(kLastWindowSizeKey, size);
}

void SessionState::clear() {
    QSettings settings;
    settings.remove(kOpenNotebooksKey);
    settings.remove(kLastWindowSizeKey);
    settings.remove(kPlacesKey);
}

} // namespace quillery
