#include "app/SessionState.h"

#include <QSettings>

#include <algorithm>

namespace quillery {

namespace {

const QString kOpenNotebooksKey = QStringLiteral("session/openNotebooks");
const QString kBeingOpenedKey = QStringLiteral("session/beingOpened");
const QString kLastWindowSizeKey = QStringLiteral("session/lastWindowSize");
// An array of paths and geometries, the notebook closed most recently first. Paths are not keys
// of their own because a settings key cannot hold every character a path can.
const QString kPlacesKey = QStringLiteral("session/windowPlaces");
const QString kPathField = QStringLiteral("path");
const QString kGeometryField = QStringLiteral("geometry");
const QString kColumnWidthsField = QStringLiteral("columnWidths");

} // namespace

std::vector<SessionState::Place> SessionState::readPlaces() {
    QSettings settings;
    std::vector<Place> places(static_cast<std::size_t>(settings.beginReadArray(kPlacesKey)));
    for (std::size_t i = 0; i < places.size(); ++i) {
        settings.setArrayIndex(static_cast<int>(i));
        places[i] = {settings.value(kPathField).toString(),
                     settings.value(kGeometryField).toByteArray(),
                     settings.value(kColumnWidthsField).toList()};
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

QString SessionState::notebookBeingOpened() const {
    return QSettings().value(kBeingOpenedKey).toString();
}

void SessionState::setNotebookBeingOpened(const QString& path) {
    // Written out at once, as the open that follows may be the app's last act.
    QSettings settings;
    if (path.isEmpty())
        settings.remove(kBeingOpenedKey);
    else
        settings.setValue(kBeingOpenedKey, path);
    settings.sync();
}

QByteArray SessionState::windowGeometry(const QString& path) const {
    const auto places = readPlaces();
    const auto found = std::ranges::find(places, path, &Place::path);
    return found == places.end() ? QByteArray() : found->geometry;
}

void SessionState::setWindowGeometry(const QString& path, const QByteArray& geometry) {
    updatePlace(path, [&geometry](Place& place) { place.geometry = geometry; });
}

std::vector<int> SessionState::columnWidths(const QString& path) const {
    const auto places = readPlaces();
    const auto found = std::ranges::find(places, path, &Place::path);
    std::vector<int> widths;
    if (found != places.end()) {
        for (const QVariant& width : found->columnWidths)
            widths.push_back(std::max(width.toInt(), 0));
    }
    return widths;
}

void SessionState::setColumnWidths(const QString& path, const std::vector<int>& widths) {
    updatePlace(path, [&widths](Place& place) {
        place.columnWidths.clear();
        for (const int width : widths)
            place.columnWidths.append(width);
    });
}

void SessionState::updatePlace(const QString& path, const std::function<void(Place&)>& change) {
    auto places = readPlaces();
    auto found = std::ranges::find(places, path, &Place::path);
    Place place = found == places.end() ? Place{path, {}, {}} : *found;
    change(place);
    if (found != places.end())
        places.erase(found);
    places.insert(places.begin(), std::move(place));
    places.resize(std::min<std::size_t>(places.size(), kMaximumPlaces));
    QSettings settings;
    settings.remove(kPlacesKey);
    settings.beginWriteArray(kPlacesKey, static_cast<int>(places.size()));
    for (std::size_t i = 0; i < places.size(); ++i) {
        settings.setArrayIndex(static_cast<int>(i));
        settings.setValue(kPathField, places[i].path);
        settings.setValue(kGeometryField, places[i].geometry);
        settings.setValue(kColumnWidthsField, places[i].columnWidths);
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
    settings.remove(kBeingOpenedKey);
    settings.remove(kLastWindowSizeKey);
    settings.remove(kPlacesKey);
}

} // namespace quillery
