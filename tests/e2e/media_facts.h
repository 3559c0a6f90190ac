// What the prober and the bytes say about a file, asked for by the test itself.
#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

namespace tessaly::e2e {

struct MediaFacts
{
    QSize size;         // coded pixels of the first video stream
    int turned = 0;     // degrees that a player is to turn it
    int channels = 0;   // of the first sound stream
    double seconds = 0; // duration of the file

    bool operator==(const MediaFacts &) const = default;
};

// All neutral when it cannot be read.
MediaFacts mediaFacts(const QString &path);

// Of the file's bytes.
QByteArray checksum(const QString &path);

// The first picture of a video as a player shows it, brought to 64 x 64 grey pixels.
QByteArray firstPicture(const QString &path);

// Mean difference of two such pictures, in grey levels of 0 to 255; 255 when one is missing.
double difference(const QByteArray &picture, const QByteArray &other);

} // namespace tessaly::e2e
