// From the prober's report and the file itself to the facts.
#include "probe/probe_stage.h"

#include <QDir>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace tessaly;
using namespace tessaly::test;

class FileProbeTest : public TestCase, private ProbeStage
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { makeFilm(); }
    void isUntouchedWithoutAPath();
    void takesEveryFactFromTheReport();
    void recordsTheFile();
    void recordsTheFileThoughTheProberFails();
    void printsWhyTheFileHasNoSize();
    void limits_data();
    void limits();
    void reportWithoutStreams_data();
    void reportWithoutStreams();
    void errorMember_data();
    void errorMember();
    void extensions_data();
    void extensions();
    void encrypted();
    void coverPictureBeforeTheFilm();
    void theLastKnownCodecSetsTheSize();
    void sizeThatTheReportLacks();
};

void FileProbeTest::isUntouchedWithoutAPath()
{
    const FileProbe probe;
    QVERIFY(isUntouched(probe));
    QVERIFY(!probe.fileSize && !probe.fileSizeHuman && !probe.fileFullPath && !probe.fileFullURL);
    QVERIFY(!probe.proberFailure);
    QCOMPARE(proberTimeLimit, 30s);
}

void FileProbeTest::takesEveryFactFromTheReport()
{
    const QByteArray printed = probeReport(goodReport, m_film);
    QCOMPARE(printed, QByteArray());
    QVERIFY(!m_probe.proberFailure);
    QVERIFY(!m_probe.hasErrors);
    QVERIFY(m_probe.isValidMediaFile);
    QVERIFY(!m_probe.isEncrypted);
    QCOMPARE(m_probe.numberOfStreams, 4);
    QVERIFY(m_probe.hasVideoTrack);
    QVERIFY(m_probe.hasAudioTrack);
    QVERIFY(m_probe.hasSubtitleTrack);
    QVERIFY(m_probe.hasAudioTrackWhichHasMoreThanTwoChannels);
    QCOMPARE(m_probe.duration, 3725.54);
    QCOMPARE(m_probe.bitRate, 1234567);
    QCOMPARE(m_probe.videoWidth, std::optional<qint64>(1080));
    QCOMPARE(m_probe.videoHeight, std::optional<qint64>(1920));
    QCOMPARE(m_probe.videoRatio, std::optional(0.5625));
    QCOMPARE(m_probe.tagRotateValue, 90);
    QCOMPARE(m_probe.metadata.size(), std::size_t{12});
    QCOMPARE(m_probe.metadata[0].at(u"value"_s), u"A Film"_s);

    QStringList tracks;
    for (const Dictionary &track : m_probe.tracksInfo) {
        for (const char *key : {"trackID", "trackType", "trackSpecialInfo", "trackDurationHuman"})
            tracks += QString::fromStdString(*track.at(key).string());
        QCOMPARE(QString::fromStdString(*track.at("trackPresentInfile").string()), m_film);
    }
    QCOMPARE(tracks.join(u' '), u"0 Poster 500x400 00:00:00.00 1 Video 1080x1920 01:02:05.50 "
                                "2 Audio 5.1 00:00:00.00 3 Subtitle eng 00:00:00.00"_s);

    // The turn is put into the report itself, so that a track's own dictionary has it, too.
    const JSON film(m_probe.tracksInfo[1].at("trackDictionary"));
    QCOMPARE(film["tags"]["rotate"].stringValue(), std::string("90"));
    QVERIFY(m_probe.jsonDictionary["streams"][1] == film);
    QCOMPARE(m_probe.jsonDictionary["format"]["duration"].stringValue(), std::string("3725.540000"));
}

void FileProbeTest::recordsTheFile()
{
    probeReport(goodReport, m_film);
    QCOMPARE(m_probe.fileSize, std::optional<quint64>(1'234'567));
    QCOMPARE(m_probe.fileSizeHuman, std::optional(u"1.2 MB"_s));
    QCOMPARE(m_probe.fileFullPath, std::optional(m_film));
    QCOMPARE(m_probe.fileFullURL, std::optional(QUrl::fromLocalFile(m_film)));

    const QString relative = QDir().relativeFilePath(m_film);
    probeReport(goodReport, relative);
    QCOMPARE(m_probe.fileFullPath, std::optional(relative));
    QCOMPARE(m_probe.fileFullURL, std::optional(QUrl::fromLocalFile(m_film)));
}

void FileProbeTest::recordsTheFileThoughTheProberFails()
{
    FakeTools tools;
    tools.setBehaviour(prober, u"exit"_s, {u"1"_s});
    probe(m_film);
    QVERIFY(isUntouched(m_probe));
    QCOMPARE(m_probe.fileSize, std::optional<quint64>(1'234'567));
    QCOMPARE(m_probe.fileSizeHuman, std::optional(u"1.2 MB"_s));
    QCOMPARE(m_probe.fileFullPath, std::optional(m_film));
    QCOMPARE(m_probe.fileFullURL, std::optional(QUrl::fromLocalFile(m_film)));
}

void FileProbeTest::printsWhyTheFileHasNoSize()
{
    const QString missing = m_folder.filePath(u"gone.mp4"_s);
    const QByteArray message = ("Failed to get file attributes for local path: "_L1 + missing +
                                " with error: No such file or directory\n"_L1)
                                   .toUtf8();
    QCOMPARE(probeReport(goodReport, missing), message + message); // once for the size, once for its text
    QVERIFY(!m_probe.fileSize);
    QCOMPARE(m_probe.fileSizeHuman, std::optional(u"Unknown File Size"_s));
    QVERIFY(m_probe.isValidMediaFile); // the prober knows better
}

void FileProbeTest::limits_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<QString>("failure");
    const auto streams = [](std::size_t count) {
        return R"({"streams":[)" + QByteArray("{},").repeated(qsizetype(count) - 1) + "{}]}";
    };
    const auto padded = [](qsizetype size) {
        const QByteArray report = R"({"streams":[{"codec_type":"audio"}]})";
        return report + QByteArray(size - report.size(), ' ');
    };
    const QString tooMany = u"ffprobe reported more than 10,000 streams."_s;
    const QString tooLong = u"ffprobe reported more than 16 MiB about the file."_s;
    QTest::newRow("as many streams as may be") << streams(streamCountLimit) << QString();
    QTest::newRow("a stream too many") << streams(streamCountLimit + 1) << tooMany;
    QTest::newRow("a million streams") << streams(1'000'000) << tooMany;
    QTest::newRow("as long as may be") << padded(reportSizeLimit) << QString();
    QTest::newRow("a byte too long") << padded(reportSizeLimit + 1) << tooLong;
}

void FileProbeTest::limits()
{
    QFETCH(QByteArray, report);
    QFETCH(QString, failure);
    const QByteArray printed =
        writtenTo(STDOUT_FILENO, [&] { m_probe = FileProbe::fromReport(m_film, report); });
    QCOMPARE(m_probe.proberFailure.value_or(QString()), failure);
    QCOMPARE(printed, failure.isEmpty() ? QByteArray() : failure.toUtf8() + '\n');
    QCOMPARE(m_probe.isValidMediaFile, failure.isEmpty());
    QCOMPARE(isUntouched(m_probe), !failure.isEmpty());
    QCOMPARE(m_probe.fileSize, std::optional<quint64>(1'234'567));
}

void FileProbeTest::reportWithoutStreams_data()
{
    QTest::addColumn<QByteArray>("report");
    const QByteArray format = R"("format": {"duration": "2.0", "bit_rate": "5", "tags": {"title": "A"}})";
    QTest::newRow("empty") << QByteArray("{}");
    QTest::newRow("a list") << QByteArray("[]");
    QTest::newRow("a list of reports") << QByteArray("[" + goodReport + "]");
    QTest::newRow("no streams") << QByteArray("{" + format + "}");
    QTest::newRow("an empty list of streams") << QByteArray(R"({"streams": [], )" + format + "}");
    QTest::newRow("streams that are an object")
        << QByteArray(R"({"streams": {"0": {"codec_type": "video"}}, )" + format + "}");
    QTest::newRow("streams that are a text") << QByteArray(R"({"streams": "video", )" + format + "}");
}

void FileProbeTest::reportWithoutStreams()
{
    QFETCH(QByteArray, report);
    QCOMPARE(probeReport(report, m_film), QByteArray());
    QVERIFY(m_probe.jsonDictionary == JSON::fromBytes(report.toStdString()));
    m_probe.jsonDictionary = JSON();
    QVERIFY(isUntouched(m_probe));
}

void FileProbeTest::errorMember_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<bool>("hasErrors");
    QTest::addColumn<bool>("isValid");
    const QByteArray streams = R"("streams": [{"codec_type": "audio"}])";
    QTest::newRow("none") << QByteArray("{" + streams + "}") << false << true;
    QTest::newRow("alone") << QByteArray(R"({"error": {"code": -2}})") << true << false;
    QTest::newRow("beside streams") << QByteArray(R"({"error": {"code": -2}, )" + streams + "}") << true
                                    << true;
    QTest::newRow("null") << QByteArray(R"({"error": null, )" + streams + "}") << true << true;
    QTest::newRow("of a stream only") << QByteArray(R"({"streams": [{"error": 1}]})") << false << true;
}

void FileProbeTest::errorMember()
{
    QFETCH(QByteArray, report);
    QCOMPARE(probeReport(report, m_film), QByteArray());
    QTEST(m_probe.hasErrors, "hasErrors");
    QTEST(m_probe.isValidMediaFile, "isValid");
    QCOMPARE(m_probe.metadata.size(), m_probe.isValidMediaFile ? std::size_t{12} : std::size_t{0});
}

void FileProbeTest::extensions_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isValid");
    QTest::newRow("video") << u"a.mp4"_s << true;
    QTest::newRow("none") << u"film"_s << true;
    QTest::newRow("text") << u"a.txt"_s << false;
    QTest::newRow("text in capitals") << u"A.TXT"_s << false;
    QTest::newRow("text in mixed letters") << u"a.Txt"_s << false;
    QTest::newRow("text behind another extension") << u"a.mp4.txt"_s << false;
    QTest::newRow("text before another extension") << u"a.txt.mp4"_s << true;
    QTest::newRow("a longer one") << u"a.txt2"_s << true;
    QTest::newRow("a name like the extension") << u"txt"_s << true;
    QTest::newRow("a hidden file") << u".txt"_s << true;
    QTest::newRow("in a folder called so") << u"b.txt/a.mp4"_s << true;
    QTest::newRow("a slash at the end") << u"a.txt/"_s << false;
    QTest::newRow("dots behind it, resolved as in the URL") << u"a.txt/b/.."_s << false;
}

void FileProbeTest::extensions()
{
    QFETCH(QString, name);
    FakeTools tools;
    tools.setBehaviour(prober, u"print"_s, {QString::fromUtf8(goodReport)});
    probe(m_folder.filePath(name));
    QTEST(m_probe.isValidMediaFile, "isValid");
    QCOMPARE(m_probe.numberOfStreams, 4); // counted before the name is looked at
    if (m_probe.isValidMediaFile) return;

    QCOMPARE(m_probe.jsonDictionary["streams"].count(), std::size_t{4});
    m_probe.numberOfStreams = 0;
    m_probe.jsonDictionary = JSON();
    QVERIFY(isUntouched(m_probe));
}

void FileProbeTest::encrypted()
{
    probeReport(R"({"streams": [{"codec_type": "video", "width": 640, "height": 360}]})", m_film);
    QVERIFY(m_probe.isEncrypted);
    QVERIFY(m_probe.isValidMediaFile); // known all the same
    QCOMPARE(m_probe.videoWidth, std::optional<qint64>(640));
}

void FileProbeTest::coverPictureBeforeTheFilm()
{
    probeReport(R"({"streams": [
        {"codec_type": "video", "codec_name": "mjpeg", "avg_frame_rate": "0/0", "width": 500, "height": 400},
        {"codec_type": "video", "codec_name": "vp9", "avg_frame_rate": "25/1", "width": 640, "height": 360}]})",
                m_film);
    QCOMPARE(m_probe.videoWidth, std::optional<qint64>(640));
    QCOMPARE(m_probe.videoHeight, std::optional<qint64>(360));
    QCOMPARE(m_probe.videoRatio, std::optional(640.0 / 360.0));
}

void FileProbeTest::theLastKnownCodecSetsTheSize()
{
    probeReport(R"({"streams": [
        {"codec_type": "video", "codec_name": "hevc", "width": 640, "height": 360, "tags": {"rotate": "180"}},
        {"codec_type": "video", "codec_name": "h264", "width": 320, "height": 200,
         "side_data_list": [{"side_data_type": "Display Matrix", "rotation": 90}]}]})",
                m_film);
    QCOMPARE(m_probe.videoWidth, std::optional<qint64>(200));
    QCOMPARE(m_probe.videoHeight, std::optional<qint64>(320));
    QCOMPARE(m_probe.videoRatio, std::optional(0.625));
    QCOMPARE(m_probe.tagRotateValue, 180); // that of the main stream stays
}

void FileProbeTest::sizeThatTheReportLacks()
{
    probeReport(R"({"streams": [{"codec_type": "video", "codec_name": "h264"}]})", m_film);
    QVERIFY(m_probe.isValidMediaFile);
    QVERIFY(m_probe.hasVideoTrack);
    QVERIFY(!m_probe.videoWidth && !m_probe.videoHeight && !m_probe.videoRatio);
    QCOMPARE(m_probe.tracksInfo.size(), std::size_t{1});

    probeReport(R"({"streams": [{"codec_type": "video", "codec_name": "hevc"}]})", m_film);
    QCOMPARE(m_probe.videoWidth, std::optional<qint64>(0));
    QCOMPARE(m_probe.videoHeight, std::optional<qint64>(0));
    QVERIFY(qIsNaN(m_probe.videoRatio.value()));
}

TESSALY_TEST_MAIN(FileProbeTest)
#include "file_probe_test.moc"
