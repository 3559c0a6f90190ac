#include "e2e/media_facts.h"

#include "support/test_case.h"
#include <QCryptographicHash>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace tessaly::e2e {

using namespace Qt::StringLiterals;

namespace {

QByteArray outputOf(const QString &tool, const QStringList &arguments)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(QStringLiteral(TESSALY_PROGRAM_FOLDER) + u'/' + tool, arguments);
    return process.waitForFinished(test::waitLimit) ? process.readAllStandardOutput() : QByteArray();
}

int turnOf(const QJsonObject &stream)
{
    const QJsonArray sideData = stream["side_data_list"_L1].toArray();
    for (const QJsonValue &entry : sideData) {
        if (entry["rotation"_L1].isDouble()) return entry["rotation"_L1].toInt();
    }
    return 0;
}

} // namespace

MediaFacts mediaFacts(const QString &path)
{
    const QByteArray report = outputOf(u"sniffer"_s, {u"-v"_s, u"quiet"_s, u"-print_format"_s, u"json"_s,
                                                      u"-show_format"_s, u"-show_streams"_s, path});
    const QJsonObject root = QJsonDocument::fromJson(report).object();
    MediaFacts facts;
    facts.seconds = root["format"_L1]["duration"_L1].toString().toDouble();
    const QJsonArray streams = root["streams"_L1].toArray();
    for (const QJsonValue &value : streams) {
        const QJsonObject stream = value.toObject();
        const QString type = stream["codec_type"_L1].toString();
        if (type == "video"_L1 && facts.size.isEmpty()) {
            facts.size = QSize(stream["width"_L1].toInt(), stream["height"_L1].toInt());
            facts.turned = turnOf(stream);
        }
        if (type == "audio"_L1 && facts.channels == 0) facts.channels = stream["channels"_L1].toInt();
    }
    return facts;
}

QByteArray checksum(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result().toHex() : QByteArray();
}

QByteArray firstPicture(const QString &path)
{
    return outputOf(u"creator"_s,
                    {u"-v"_s, u"quiet"_s, u"-i"_s, path, u"-frames:v"_s, u"1"_s, u"-vf"_s, u"scale=64:64"_s,
                     u"-pix_fmt"_s, u"gray"_s, u"-f"_s, u"rawvideo"_s, u"-"_s});
}

double difference(const QByteArray &picture, const QByteArray &other)
{
    if (picture.isEmpty() || picture.size() != other.size()) return 255;
    qint64 sum = 0;
    for (qsizetype i = 0; i < picture.size(); ++i)
        sum += qAbs(static_cast<uchar>(picture[i]) - static_cast<uchar>(other[i]));
    return static_cast<double>(sum) / static_cast<double>(picture.size());
}

} // namespace tessaly::e2e
