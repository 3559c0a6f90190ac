#include "support/test_case.h"
#include "json/json.h"

#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace tessaly;

namespace {

using Row = QMap<QString, QString>;

// A line of the index: what is known of a file, by column.
QList<Row> readIndex()
{
    QFile file(QStringLiteral(TESSALY_CORPUS "/index.tsv"));
    if (!file.open(QIODevice::ReadOnly)) return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    const QStringList columns = lines.takeFirst().split(u'\t');
    QList<Row> rows;
    for (const QString &line : lines) {
        Row row;
        const QStringList cells = line.split(u'\t');
        for (qsizetype i = 0; i < columns.size(); ++i)
            row.insert(columns[i], cells.value(i));
        rows += row;
    }
    return rows;
}

// What the prober itself says to these arguments, with one line's end left out.
QByteArray proberSays(const QStringList &arguments)
{
    QProcess prober;
    prober.setWorkingDirectory(QStringLiteral(TESSALY_CORPUS "/files"));
    prober.start(QStringLiteral(TESSALY_PROGRAM_FOLDER "/sniffer"), arguments);
    prober.waitForFinished(60000);
    return prober.readAllStandardOutput().trimmed();
}

// The index was made with FFmpeg 5.1. Later ones know a picture codec, a sound codec and a container more.
Row asThisProberSeesIt(Row row)
{
    static const QRegularExpression version(u"version n?(\\d+)"_s);
    static const int generation =
        version.match(QString::fromUtf8(proberSays({u"-version"_s}))).captured(1).toInt();
    if (generation < 7) return row;
    const QString name = row[u"file"_s];
    if (name == "sample_vvc.mp4"_L1) row.insert(Row{{u"video_codec"_s, u"vvc"_s}, {u"accepted"_s, u"yes"_s}});
    if (name == "sine-3s-xhe-aac-44khz-mono.mp4"_L1)
        row.insert(Row{{u"traits"_s, {}}, {u"stream_kinds"_s, u"0v/1a/0s/0d/0cover"_s}});
    if (name == "cheers_1440x960.heic"_L1)
        row.insert(Row{{u"traits"_s, u"still"_s},
                       {u"stream_kinds"_s, u"2v/0a/0s/0d/0cover"_s},
                       {u"video_codec"_s, u"hevc"_s},
                       {u"accepted"_s, u"yes"_s},
                       {u"size_shown"_s, u"1440x960"_s}});
    return row;
}

// What the index says of one file, in terms of the facts.
class Expected
{
public:
    explicit Expected(const Row &row) : m_row(row) {}

    bool isValid() const { return !hasTrait("probe-fails") && !hasTrait("text"); }
    // A video without a frame rate passes for a still.
    bool hasVideo() const { return isValid() && streams("v") > 0 && !hasTrait("afr0/0"); }
    bool hasAudio() const { return isValid() && streams("a") > 0; }
    bool hasManyChannels() const { return isValid() && hasTrait("multichannel"); }
    bool hasSubtitles() const { return isValid() && streams("s") > 0 && !hasTrait("no-codec_name"); }
    bool isEncrypted() const { return isValid() && streams("v") > 0 && m_row[u"video_codec"_s] == "-"_L1; }
    bool isAccepted() const { return m_row[u"accepted"_s] == "yes"_L1; }
    QString sizeShown() const { return m_row[u"size_shown"_s]; }
    // Generations differ in it, even by seconds.
    double duration() const
    {
        if (!isValid()) return 0;
        return proberSays({u"-v"_s, u"error"_s, u"-show_entries"_s, u"format=duration"_s, u"-of"_s,
                           u"csv=p=0"_s, u"file:"_s + m_row[u"file"_s]})
            .toDouble();
    }
    qint64 fileSize() const { return m_row[u"size"_s].toLongLong(); }

    qint64 rotateTag() const
    {
        if (!hasVideo()) return 0;
        const qint64 counterClockwise = m_row[u"rotation"_s].toLongLong();
        if (counterClockwise == -90) return 90;
        if (counterClockwise == 90) return 270;
        return counterClockwise == 180 || counterClockwise == -180 ? 180 : 0;
    }

private:
    bool hasTrait(const char *trait) const
    {
        return m_row[u"traits"_s].split(u' ').contains(QLatin1StringView(trait));
    }

    // "2v/1a/0s/3d/1cover"
    int streams(const char *kind) const
    {
        for (const QString &count : m_row[u"stream_kinds"_s].split(u'/')) {
            const QString number = count.first(count.size() - qsizetype(qstrlen(kind)));
            if (count == number + QLatin1StringView(kind)) return number.toInt();
        }
        return -1;
    }

    Row m_row;
};

QString sizeText(const JSON &facts)
{
    if (facts["videoWidth"].type() == Type::null || facts["videoHeight"].type() == Type::null) return {};
    return u"%1x%2"_s.arg(facts["videoWidth"].intValue()).arg(facts["videoHeight"].intValue());
}

// Whether the window would take the file.
bool isAcceptable(const JSON &facts, const QString &name)
{
    return facts["isValidMediaFile"].boolValue() && !facts["hasErrors"].boolValue() &&
           !facts["isEncrypted"].boolValue() && facts["hasVideoTrack"].boolValue() &&
           facts["videoWidth"].intValue() != 0 && !name.endsWith(".vob"_L1, Qt::CaseInsensitive);
}

} // namespace

Q_DECLARE_METATYPE(Row)

// The program over real files, each of which once was trouble for some program.
class CorpusTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void theIndexNamesFiles();
    void facts_data();
    void facts();
};

void CorpusTest::theIndexNamesFiles()
{
    const QList<Row> rows = readIndex();
    QVERIFY(!rows.isEmpty());
    for (const Row &row : rows)
        QVERIFY2(QFile::exists(QStringLiteral(TESSALY_CORPUS "/files/") + row[u"file"_s]),
                 qPrintable(row[u"file"_s]));
}

void CorpusTest::facts_data()
{
    QTest::addColumn<Row>("row");
    for (const Row &row : readIndex())
        QTest::newRow(row[u"file"_s].toUtf8().constData()) << row;
}

void CorpusTest::facts()
{
    QFETCH(Row, row);
    const Expected expected(asThisProberSeesIt(row));
    const QString name = row[u"file"_s];
    QProcess program;
    program.setWorkingDirectory(QStringLiteral(TESSALY_CORPUS "/files"));
    program.start(QStringLiteral(TESSALY_PROGRAM_FOLDER "/tessaly-cli"),
                  {u"info"_s, u"--json"_s, u"--"_s, name});
    QVERIFY(program.waitForFinished(60000));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), expected.isValid() ? 0 : 1);
    QCOMPARE(program.readAllStandardError(), QByteArray());

    const JSON facts = JSON::fromBytes(program.readAllStandardOutput().toStdString());
    QCOMPARE(facts["isValidMediaFile"].boolValue(), expected.isValid());
    QCOMPARE(facts["hasVideoTrack"].boolValue(), expected.hasVideo());
    QCOMPARE(facts["hasAudioTrack"].boolValue(), expected.hasAudio());
    QCOMPARE(facts["hasAudioTrackWhichHasMoreThanTwoChannels"].boolValue(), expected.hasManyChannels());
    QCOMPARE(facts["hasSubtitleTrack"].boolValue(), expected.hasSubtitles());
    QCOMPARE(facts["isEncrypted"].boolValue(), expected.isEncrypted());
    QCOMPARE(facts["tagRotateValue"].intValue(), expected.rotateTag());
    QCOMPARE(facts["duration"].doubleValue(), expected.duration());
    QCOMPARE(facts["fileSize"].intValue(), expected.fileSize());
    QCOMPARE(isAcceptable(facts, name), expected.isAccepted());
    if (!expected.sizeShown().isEmpty() || expected.isAccepted())
        QCOMPARE(sizeText(facts), expected.sizeShown());
}

TESSALY_TEST_MAIN(CorpusTest)
#include "corpus_test.moc"
