#include "platform/child_process.h"
#include "probe/file_probe.h"
#include "support/fake_tools.h"
#include "support/output_capture.h"
#include "support/test_case.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <functional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace tessaly;
using tessaly::test::FakeTools;
using tessaly::test::writtenTo;
using Steps = QList<QStringList>;

namespace {

const QString prober = u"sniffer"_s;

const QByteArray goodReport = R"({
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
bool isUntouched(const FileProbe &probe)
{
    return probe.jsonDictionary.type() == Type::null && !probe.jsonDictionary.error() && !probe.hasErrors &&
           !probe.isValidMediaFile && !probe.isEncrypted && probe.numberOfStreams == 0 &&
           !probe.hasVideoTrack && !probe.hasAudioTrack && !probe.hasSubtitleTrack &&
           !probe.hasAudioTrackWhichHasMoreThanTwoChannels && probe.duration == 0 && probe.bitRate == 0 &&
           !probe.videoWidth && !probe.videoHeight && !probe.videoRatio && probe.tagRotateValue == 0 &&
           probe.tracksInfo.empty() && probe.metadata.empty();
}

} // namespace

class FileProbeTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void isUntouchedWithoutAPath();
    void callsTheProber_data();
    void callsTheProber();
    void takesEveryFactFromTheReport();
    void looksUpTheProberAfresh();
    void recordsTheFile();
    void recordsTheFileThoughTheProberFails();
    void printsWhyTheFileHasNoSize();
    void outputThatIsNoReport_data();
    void outputThatIsNoReport();
    void outputThatCounts_data();
    void outputThatCounts();
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
    void proberThatCannotRun_data();
    void proberThatCannotRun();
    void proberThatHasToBeStopped_data();
    void proberThatHasToBeStopped();
    void proberOfAProgramThatIsEnding();
    void errorsOfTheProberAreInherited();

private:
    // What was printed while the probe was made; the probe goes to m_probe.
    QByteArray probe(const QString &path, std::chrono::milliseconds limit = proberTimeLimit);
    QByteArray probeReport(const QByteArray &report, const QString &path);

    QTemporaryDir m_folder;
    QString m_film;
    FileProbe m_probe;
};

void FileProbeTest::initTestCase()
{
    m_film = m_folder.filePath(u"film.mp4"_s);
    QFile film(m_film);
    QVERIFY(film.open(QIODevice::WriteOnly));
    QVERIFY(film.resize(1'234'567));
}

QByteArray FileProbeTest::probe(const QString &path, std::chrono::milliseconds limit)
{
    return writtenTo(STDOUT_FILENO, [&] { m_probe = FileProbe(path, limit); });
}

QByteArray FileProbeTest::probeReport(const QByteArray &report, const QString &path)
{
    FakeTools tools;
    tools.setBehaviour(prober, u"print"_s, {QString::fromUtf8(report)});
    return probe(path);
}

void FileProbeTest::isUntouchedWithoutAPath()
{
    const FileProbe probe;
    QVERIFY(isUntouched(probe));
    QVERIFY(!probe.fileSize && !probe.fileSizeHuman && !probe.fileFullPath && !probe.fileFullURL);
    QVERIFY(!probe.proberFailure);
    QCOMPARE(proberTimeLimit, 30s);
}

void FileProbeTest::callsTheProber_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("plain") << u"/videos/film.mp4"_s;
    QTest::newRow("spaces") << u"/videos/a film.mp4"_s;
    QTest::newRow("line break") << u"/videos/a\nfilm.mp4"_s;
    QTest::newRow("quotes") << u"/videos/\"a\" 'film'`x`.mp4"_s;
    QTest::newRow("markup") << u"/videos/<b>a</b>&amp;.mp4"_s;
    QTest::newRow("shell signs") << u"/videos/$HOME; exit 1 | * ? \\.mp4"_s;
    QTest::newRow("pattern") << u"/videos/%d %1 100%.mp4"_s;
    QTest::newRow("emoji") << u"/videos/🎬é漢.mp4"_s;
    QTest::newRow("not normalised") << u"/videos/e\u0301.mp4"_s;
    QTest::newRow("255 bytes") << u"/videos/"_s + QString(251, u'x') + u".mp4"_s;
    QTest::newRow("point at the end") << u"/videos/film."_s;
    QTest::newRow("dots are not resolved") << u"/videos/./a/../film.mp4"_s;
    QTest::newRow("colon") << u"/videos/a:b.mp4"_s;
    QTest::newRow("leading dash") << u"/videos/-film.mp4"_s;
    QTest::newRow("relative, leading dash") << u"-film.mp4"_s;
    QTest::newRow("relative") << u"film.mp4"_s;
    QTest::newRow("empty") << QString();
}

void FileProbeTest::callsTheProber()
{
    QFETCH(QString, path);
    FakeTools tools;
    probe(path);
    const QStringList arguments{u"-v"_s,
                                u"quiet"_s,
                                u"-print_format"_s,
                                u"json"_s,
                                u"-show_format"_s,
                                u"-show_streams"_s,
                                u"-show_chapters"_s,
                                u"-show_error"_s,
                                path};
    QCOMPARE(tools.calls(prober), QList<QStringList>{arguments});
    QVERIFY(tools.calls(u"creator"_s).isEmpty());
    QCOMPARE(m_probe.fileFullPath, std::optional(path));
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

void FileProbeTest::looksUpTheProberAfresh()
{
    FakeTools tools;
    tools.remove(prober);
    probe(m_film);
    QVERIFY(m_probe.proberFailure);
    tools.setBehaviour(prober, u"print"_s, {QString::fromUtf8(goodReport)});
    probe(m_film);
    QVERIFY(!m_probe.proberFailure);
    QVERIFY(m_probe.isValidMediaFile);
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

void FileProbeTest::outputThatIsNoReport_data()
{
    QTest::addColumn<Steps>("steps");
    QTest::addColumn<QByteArray>("printed");
    const auto row = [](const char *name, const Steps &steps, const QByteArray &text,
                        const QByteArray &index = {}) {
        const QByteArray position = index.isEmpty() ? "" : ", NSJSONSerializationErrorIndex=" + index;
        QTest::newRow(name) << steps
                            << "Error Domain=NSCocoaErrorDomain Code=3840 \"" + text +
                                   "\" UserInfo={NSDebugDescription=" + text + position + "}\n";
    };
    const QByteArray noStart =
        "JSON text did not start with array or object and option to allow fragments not set.";
    const auto startingWrong = [&noStart](int column) {
        return noStart + " around line 1, column " + QByteArray::number(column) + ".";
    };
    row("nothing", {}, "Unable to parse empty data.");
    row("nothing, and a failure", {{u"exit"_s, u"1"_s}}, "Unable to parse empty data.");
    row("blanks", {{u"print"_s, u" \n"_s}}, "Unable to parse empty data.");
    row("rubbish", {{u"rubbish"_s}}, startingWrong(0), "0");
    row("an opening brace", {{u"open-brace"_s}}, "Unexpected end of file around line 2, column 0.", "2");
    row("bytes that are no text", {{u"invalid-utf8"_s}}, "Invalid value around line 1, column 18.", "18");
    row("a crash in the middle", {{u"print"_s, u"{\"streams\": ["_s}, {u"crash"_s}},
        "Unexpected end of file around line 1, column 13.", "13");
    row("null alone", {{u"print"_s, u"null"_s}}, startingWrong(0), "0");
    row("two reports", {{u"print"_s, u"{}{}"_s}}, "Garbage at end around line 1, column 2.", "2");
    row("50 MB of rubbish", {{u"flood-stdout"_s, u"50000000"_s}}, startingWrong(0), "0");
}

void FileProbeTest::outputThatIsNoReport()
{
    QFETCH(Steps, steps);
    FakeTools tools;
    tools.setSteps(prober, steps);
    QTEST(probe(m_film), "printed");
    QVERIFY(isUntouched(m_probe));
    QVERIFY(!m_probe.proberFailure); // it ran, and had nothing to say
}

void FileProbeTest::outputThatCounts_data()
{
    QTest::addColumn<Steps>("steps");
    const QString report = QString::fromUtf8(goodReport);
    const QString half = report.first(report.size() / 2);
    const QString rest = report.sliced(report.size() / 2);
    QTest::newRow("exit 0") << Steps{{u"print"_s, report}};
    QTest::newRow("exit 1") << Steps{{u"print"_s, report}, {u"exit"_s, u"1"_s}};
    QTest::newRow("a crash behind the report") << Steps{{u"print"_s, report}, {u"crash"_s}};
    QTest::newRow("in two parts") << Steps{{u"print"_s, half}, {u"pause"_s, u"30"_s}, {u"print"_s, rest}};
    QTest::newRow("with blanks around") << Steps{{u"print"_s, u"\n "_s + report + u"\r\n"_s}};
    const QString blanks(4'000'000, u' ');
    QTest::newRow("much more than a pipe holds") << Steps{{u"print"_s, blanks + report + blanks}};
}

void FileProbeTest::outputThatCounts()
{
    QFETCH(Steps, steps);
    FakeTools tools;
    tools.setSteps(prober, steps);
    QCOMPARE(probe(m_film), QByteArray());
    QVERIFY(m_probe.isValidMediaFile);
    QCOMPARE(m_probe.numberOfStreams, 4);
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

void FileProbeTest::proberThatCannotRun_data()
{
    using Change = std::function<void(FakeTools &)>;
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("reason"); // %1: the prober's path
    const QString missing = u"The prober \"sniffer\" is missing among the resources of this program."_s;
    QTest::newRow("missing") << Change([](FakeTools &tools) { tools.remove(prober); }) << missing;
    QTest::newRow("a link that leads nowhere")
        << Change([](FakeTools &tools) { tools.replaceByBrokenLink(prober); }) << missing;
    QTest::newRow("a folder") << Change([](FakeTools &tools) { tools.replaceByFolder(prober); })
                              << u"\"%1\" is a folder, not a program."_s;
    QTest::newRow("not executable") << Change([](FakeTools &tools) { tools.replaceByPlainFile(prober); })
                                    << u"The program \"%1\" is not marked as executable."_s;
    QTest::newRow("no program") << Change([](FakeTools &tools) {
        tools.replaceByPlainFile(prober);
        QFile::setPermissions(tools.path(prober), QFile::ReadOwner | QFile::ExeOwner);
    }) << u"The program \"%1\" cannot be run on this computer (Exec format error)."_s;
}

void FileProbeTest::proberThatCannotRun()
{
    QFETCH(std::function<void(FakeTools &)>, change);
    QFETCH(QString, reason);
    FakeTools tools;
    change(tools);
    const QByteArray printed = probe(m_film);
    QVERIFY(m_probe.proberFailure);
    QCOMPARE(*m_probe.proberFailure, reason.contains("%1"_L1) ? reason.arg(tools.path(prober)) : reason);
    QCOMPARE(printed, m_probe.proberFailure->toUtf8() + '\n');
    QVERIFY(isUntouched(m_probe));
    QCOMPARE(m_probe.fileSize, std::optional<quint64>(1'234'567));
}

void FileProbeTest::proberThatHasToBeStopped_data()
{
    QTest::addColumn<Steps>("steps");
    QTest::addColumn<int>("milliseconds");
    QTest::addColumn<QString>("reason");
    const QString late = u"The prober did not end within 0.25 seconds."_s;
    QTest::newRow("never ends") << Steps{{u"hang"_s}} << 250 << late;
    QTest::newRow("ignores being terminated") << Steps{{u"ignore-terminate"_s}, {u"hang"_s}} << 250 << late;
    QTest::newRow("never ends behind a good report")
        << Steps{{u"print"_s, QString::fromUtf8(goodReport)}, {u"hang"_s}} << 250 << late;
    QTest::newRow("never stops writing")
        << Steps{{u"flood-stdout"_s, u"1000000000000"_s}} << 30000 << u"The prober did not stop writing."_s;
}

void FileProbeTest::proberThatHasToBeStopped()
{
    QFETCH(Steps, steps);
    QFETCH(int, milliseconds);
    FakeTools tools;
    tools.setSteps(prober, steps);
    QElapsedTimer clock;
    clock.start();
    const QByteArray printed = probe(m_film, std::chrono::milliseconds(milliseconds));
    QVERIFY(clock.elapsed() < 15000);
    QTEST(m_probe.proberFailure.value_or(QString()), "reason");
    QCOMPARE(printed, m_probe.proberFailure->toUtf8() + '\n');
    QVERIFY(isUntouched(m_probe));
    QVERIFY(tools.runningProcesses(prober).isEmpty());
}

void FileProbeTest::proberOfAProgramThatIsEnding()
{
    FakeTools tools;
    tools.setBehaviour(prober, u"print"_s, {QString::fromUtf8(goodReport)});
    endAllRuns();
    probe(m_film);
    letRunsStart();
    QVERIFY(isUntouched(m_probe));
    QCOMPARE(m_probe.proberFailure,
             std::optional(u"The prober was stopped because the program is ending."_s));
    QVERIFY(tools.calls(prober).isEmpty());
}

void FileProbeTest::errorsOfTheProberAreInherited()
{
    FakeTools tools;
    tools.setSteps(prober, {{u"complain"_s, u"trouble\n"_s}, {u"print"_s, QString::fromUtf8(goodReport)}});
    QByteArray output;
    QCOMPARE(writtenTo(STDERR_FILENO, [&] { output = probe(m_film); }), QByteArray("trouble\n"));
    QCOMPARE(output, QByteArray());
    QVERIFY(m_probe.isValidMediaFile);
}

TESSALY_TEST_MAIN(FileProbeTest)
#include "file_probe_test.moc"
