#include "probe/file_probe.h"
#include "support/fake_tools.h"
#include "support/output_capture.h"
#include "support/test_case.h"

#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace tessaly;
using tessaly::test::FakeTools;
using tessaly::test::writtenTo;

namespace {

QString clip(const QString &name)
{
    return QStringLiteral(TESSALY_MEDIA_FOLDER) + u'/' + name;
}

// "640x360 turned by 90"; "no size" when none is known.
QString sizeText(const FileProbe &probe)
{
    if (!probe.videoWidth || !probe.videoHeight) return u"no size"_s;
    const QString size = u"%1x%2"_s.arg(*probe.videoWidth).arg(*probe.videoHeight);
    return probe.tagRotateValue == 0 ? size : size + u" turned by %1"_s.arg(probe.tagRotateValue);
}

QString flagsText(const FileProbe &probe)
{
    QStringList flags;
    if (probe.hasErrors) flags += u"errors"_s;
    if (probe.isEncrypted) flags += u"encrypted"_s;
    if (probe.hasVideoTrack) flags += u"video"_s;
    if (probe.hasAudioTrack) flags += u"audio"_s;
    if (probe.hasAudioTrackWhichHasMoreThanTwoChannels) flags += u"many channels"_s;
    if (probe.hasSubtitleTrack) flags += u"subtitles"_s;
    return flags.join(u", "_s);
}

QString tracksText(const FileProbe &probe)
{
    QStringList tracks;
    for (const Dictionary &track : probe.tracksInfo) {
        tracks +=
            QString::fromStdString(*track.at("trackType").string() + ' ' + *track.at("trackCodec").string() +
                                   ' ' + *track.at("trackSpecialInfo").string());
    }
    return tracks.join(u", "_s);
}

} // namespace

// With the real prober.
class FileProbeMediaTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void clips_data();
    void clips();
    void tagsAndLength();
    void names_data();
    void names();
    void noMedia_data();
    void noMedia();
    void aPipeThatNobodyWrites();

private:
    QTemporaryDir m_folder;
    FakeTools m_tools;
};

void FileProbeMediaTest::initTestCase()
{
    m_tools.useRealTool(u"sniffer"_s);
}

void FileProbeMediaTest::clips_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("flags");
    QTest::addColumn<QString>("tracks");
    const auto row = [](const char *title, const char *name, const char *size, const char *flags,
                        const char *tracks) {
        QTest::newRow(title) << QString::fromLatin1(name) << QString::fromLatin1(size)
                             << QString::fromLatin1(flags) << QString::fromLatin1(tracks);
    };
    row("plain", "plain.mp4", "640x360", "video, audio", "Video h264 640x360, Audio aac mono");
    row("without sound", "hd.mp4", "1920x1080", "video", "Video h264 1920x1080");
    row("an odd side", "odd.mkv", "853x480", "video", "Video ffv1 853x480");
    row("turned by a quarter, as a phone does", "portrait.mp4", "360x640 turned by 90", "video, audio",
        "Video h264 360x640, Audio aac mono");
    row("turned by a quarter the other way", "portrait_other.mp4", "360x640 turned by 270", "video, audio",
        "Video h264 360x640, Audio aac mono");
    row("upside down", "upside_down.mp4", "640x360 turned by 180", "video, audio",
        "Video h264 640x360, Audio aac mono");
    row("six channels", "surround.mkv", "320x180", "video, audio, many channels",
        "Video h264 320x180, Audio ac3 5.1(side)");
    row("film with a cover picture", "cover_film.mp4", "640x360", "video, audio",
        "Video h264 640x360, Audio aac mono, Poster png 64x64");
    row("sound with a cover picture", "cover.m4a", "no size", "audio", "Audio aac mono, Poster png 64x64");
    row("sound only", "sound.m4a", "no size", "audio", "Audio aac mono");
    row("film, sound and subtitles", "subtitled.mp4", "640x360", "video, audio, subtitles",
        "Video h264 640x360, Audio aac mono, Subtitle mov_text eng");
    row("one frame", "one_frame.mp4", "320x180", "video", "Video h264 320x180");
    row("no duration", "no_duration.webm", "320x180", "video", "Video vp8 320x180");
}

void FileProbeMediaTest::clips()
{
    QFETCH(QString, name);
    FileProbe probe;
    const QByteArray printed = writtenTo(STDOUT_FILENO, [&] { probe = FileProbe(clip(name)); });
    QCOMPARE(printed, QByteArray());
    QVERIFY(probe.isValidMediaFile);
    QTEST(sizeText(probe), "size");
    QTEST(flagsText(probe), "flags");
    QTEST(tracksText(probe), "tracks");
    QCOMPARE(probe.numberOfStreams, static_cast<qint64>(probe.tracksInfo.size()));
    QCOMPARE(probe.fileSize, std::optional(static_cast<quint64>(QFile(clip(name)).size())));
}

void FileProbeMediaTest::tagsAndLength()
{
    const FileProbe film(clip(u"subtitled.mp4"_s));
    QCOMPARE(film.metadata.at(0).at(u"value"_s), u"A Film"_s);
    QCOMPARE(film.metadata.at(3).at(u"value"_s), u"2008"_s);
    QVERIFY2(film.duration > 1.9 && film.duration < 2.1, qPrintable(QString::number(film.duration)));
    QVERIFY(film.bitRate > 1000);
    const FileProbe endless(clip(u"no_duration.webm"_s));
    QCOMPARE(endless.duration, 0.0);
    QCOMPARE(endless.bitRate, 0);
}

void FileProbeMediaTest::names_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("line break") << u"a\nb.mp4"_s;
    QTest::newRow("quotes") << u"\"a\" 'b' `c`.mp4"_s;
    QTest::newRow("markup") << u"<b>a & b&amp;.mp4"_s;
    QTest::newRow("emoji") << u"🎬 é 漢.mp4"_s;
    QTest::newRow("255 bytes") << QString(251, u'x') + u".mp4"_s;
    QTest::newRow("255 bytes of two-byte letters") << QString(125, u'é') + u"x.mp4"_s;
    QTest::newRow("leading dash") << u"-video.mp4"_s;
    QTest::newRow("pattern") << u"%d %03d.mp4"_s;
    QTest::newRow("point at the end") << u"film."_s;
    QTest::newRow("blanks at both ends") << u" film "_s;
    QTest::newRow("protocol") << u"http:film.mp4"_s;
    QTest::newRow("escape character") << u"a\u001B[31mb.mp4"_s;
}

void FileProbeMediaTest::names()
{
    QFETCH(QString, name);
    const QString path = m_folder.filePath(name);
    QVERIFY(QFile::copy(clip(u"plain.mp4"_s), path));
    const FileProbe probe(path);
    QVERIFY(probe.isValidMediaFile);
    QCOMPARE(sizeText(probe), u"640x360"_s);
    QCOMPARE(probe.fileFullPath, std::optional(path));
    QCOMPARE(probe.fileFullURL->toLocalFile(), path);
    QVERIFY(probe.fileSize.value_or(0) > 0);
}

void FileProbeMediaTest::noMedia_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<int>("linesPrinted");
    QTest::newRow("missing") << m_folder.filePath(u"gone.mp4"_s) << QByteArray() << 2;
    QTest::newRow("in a file instead of a folder") << clip(u"plain.mp4/a.mp4"_s) << QByteArray() << 2;
    QTest::newRow("folder") << m_folder.path() << QByteArray() << 0;
    QTest::newRow("folder, with a slash") << m_folder.path() + u'/' << QByteArray() << 0;
    QTest::newRow("empty file") << m_folder.filePath(u"empty.mp4"_s) << QByteArray("") << 0;
    QTest::newRow("text called mp4") << m_folder.filePath(u"text.mp4"_s) << QByteArray("no film\n") << 0;
    QTest::newRow("name too long") << m_folder.filePath(QString(256, u'x')) << QByteArray() << 2;
    QTest::newRow("device") << u"/dev/null"_s << QByteArray() << 2;
    QTest::newRow("no name") << QString() << QByteArray() << 2;
}

void FileProbeMediaTest::noMedia()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, contents);
    if (!contents.isNull()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(contents), contents.size());
    }
    FileProbe probe;
    const QByteArray printed = writtenTo(STDOUT_FILENO, [&] { probe = FileProbe(path); });
    QTEST(static_cast<int>(printed.count('\n')), "linesPrinted");
    QVERIFY(!probe.isValidMediaFile);
    QVERIFY(probe.hasErrors); // the prober said so itself
    QVERIFY(!probe.proberFailure);
    QVERIFY(!probe.hasVideoTrack);
    QCOMPARE(sizeText(probe), u"no size"_s);
    QVERIFY(probe.metadata.empty());
}

void FileProbeMediaTest::aPipeThatNobodyWrites()
{
    const QString pipe = m_folder.filePath(u"pipe.mp4"_s);
    QVERIFY(::mkfifo(QFile::encodeName(pipe).constData(), 0600) == 0);
    FileProbe probe;
    const QByteArray printed = writtenTo(STDOUT_FILENO, [&] { probe = FileProbe(pipe, 400ms); });
    QVERIFY(!probe.isValidMediaFile);
    QCOMPARE(probe.proberFailure, std::optional(u"ffprobe did not end within 0.4 seconds."_s));
    const QByteArray noSize = "Failed to get a size attribute from path: " + pipe.toUtf8() + '\n';
    QCOMPARE(printed, noSize + noSize + "ffprobe did not end within 0.4 seconds.\n");
    QVERIFY(!probe.fileSize);
}

TESSALY_TEST_MAIN(FileProbeMediaTest)
#include "file_probe_media_test.moc"
