#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QStringList>

#include <optional>

class QMimeData;

namespace quillery {

// A picture taken from dropped or pasted data: the decoded picture (at most the size shown), the
// bytes to store and the file extension ("jpg", "png" or "tiff") to store them under.
struct DroppedPicture {
    QImage image;
    QByteArray imageData;
    QString fileExtension;
};

// The picture formats a column takes, in the order they are tried: TIFF, PNG, Qt's own image
// (what the platform offers for any other picture format) and then every other picture type Qt
// can read.
QStringList pictureMimeTypes(const QMimeData& data);

// True when the data offers a picture in any of the types above (nothing is decoded).
bool hasPictureType(const QMimeData& data);

// The first picture that decodes, re-encoded at full size as JPEG (else PNG, else TIFF), so a
// picture dragged from another application is normally stored as JPEG. None when no type holds a
// picture.
std::optional<DroppedPicture> pictureFromMimeData(const QMimeData& data);

} // namespace quillery
