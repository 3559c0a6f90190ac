// What the tests of FileProbe share: a file to probe, and a prober that prints what the test says.
#pragma once

#include "probe/file_probe.h"
#include "support/fake_tools.h"
#include "support/output_capture.h"
#include "support/test_case.h"

#include <QFile>
#include <QTemporaryDir>

namespace tessaly::test {

using namespace Qt::StringLiterals;

inline const QString prober = u"sniffer"_s;

inline const QByteArray goodReport = R"({
    "streams": [
        {"index": 0, "codec_type": "video", "codec_name": "png", "codec_tag_string": "[0][0][0][0]",
         "avg_frame_rate": "0/0", "width": 500, "height": 400},
        {"index": 1, "codec_type": "video", "codec_name": "hevc", "avg_frame_rate": "30000/1001",
         "width": 1920, "height": 1080, "duration": "3725.5",
         "side_data_list": [{"side_data_type": "Display Matrix", "rotation": -90}]},
        {"index": 2, "codec_type": "audio", "codec_name": "aac", "channels": 6, "channel_layout": "5.1"},
        {"index": 3, "codec_type": "subtitle", "codec_name": "mov_text", "codec_tag_string": "tx3g",
         "tags": {"language": "eng"}}
    ],
    "chapters": [],
    "format": {"duration": "3725.540000", "bit_rate": "1234567", "tags": {"title": "A Film"}}
})";

// Whether no field but the file facts has been touched.
inline bool isUntouched(const FileProbe &probe)
{
    return probe.jsonDictionary.type() == Type::null && !probe.jsonDictionary.error() && !probe.hasErrors &&
           !probe.isValidMediaFile && !probe.isEncrypted && probe.numberOfStreams == 0 &&
           !probe.hasVideoTrack && !probe.hasAudioTrack && !probe.hasSubtitleTrack &&
           !probe.hasAudioTrackWhichHasMoreThanTwoChannels && probe.duration == 0 && probe.bitRate == 0 &&
           !probe.videoWidth && !probe.videoHeight && !probe.videoRatio && probe.tagRotateValue == 0 &&
           probe.tracksInfo.empty() && probe.metadata.empty();
}

class ProbeStage
{
protected:
    // A file of 1,234,567 bytes.
    void makeFilm()
    {
        m_film = m_folder.filePath(u"film.mp4"_s);
        QFile film(m_film);
        QVERIFY(film.open(QIODevice::WriteOnly));
        QVERIFY(film.resize(1'234'567));
    }

    // What was printed while the probe was made; the probe goes to m_probe.
    QByteArray probe(const QString &path, std::chrono::milliseconds limit = proberTimeLimit)
    {
        return writtenTo(STDOUT_FILENO, [&] { m_probe = FileProbe(path, limit); });
    }
    QByteArray probeReport(const QByteArray &report, const QString &path)
    {
        FakeTools tools;
        tools.setBehaviour(prober, u"print"_s, {QString::fromUtf8(report)});
        return probe(path);
    }

    QTemporaryDir m_folder;
    QString m_film;
    FileProbe m_probe;
};

} // namespace tessaly::test
