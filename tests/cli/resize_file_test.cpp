#include "cli/resize_file.h"
#include "support/fake_tools.h"
#include "support/test_case.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace tessaly;

namespace {

QByteArray reportOf(const QByteArray &streams, const QByteArray &format)
{
    return R"({"streams":[)" + streams + R"(],"format":{"format_name":")" + format + R"("}})";
}

const QByteArray withoutRate =
    R"({"codec_type":"video","codec_name":"theora","avg_frame_rate":"0/0","width":64,"height":36})";
const QByteArray sound = R"({"codec_type":"audio","codec_name":"vorbis","avg_frame_rate":"0/0"})";
const QByteArray cover = R"({"codec_type":"video","codec_name":"png","avg_frame_rate":"0/0",)"
                         R"("disposition":{"attached_pic":1}})";

} // namespace

class ResizeFileTest : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void whatAFolderLeavesOut_data();
    void whatAFolderLeavesOut();
    void aVideoWithoutARateIsRefusedByAnyWay_data();
    void aVideoWithoutARateIsRefusedByAnyWay();

private:
    QString made(const QString &name) const;

    QTemporaryDir m_folder;
};

QString ResizeFileTest::made(const QString &name) const
{
    QFile file(m_folder.filePath(name));
    return file.open(QIODevice::WriteOnly) ? file.fileName() : QString();
}

void ResizeFileTest::whatAFolderLeavesOut_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<QString>("sentence"); // empty: it is not left out
    const auto row = [](const char *what, const char *name, const QByteArray &report, const char *sentence) {
        QTest::newRow(what) << QString::fromUtf8(name) << report << QString::fromUtf8(sentence);
    };
    const char *none = "no video was found in it.";
    const QByteArray film = R"({"codec_type":"video","codec_name":"h264","avg_frame_rate":"25/1"})";
    const QByteArray still =
        R"({"codec_type":"video","codec_name":"av1","avg_frame_rate":"0/0","nb_frames":"1"})";
    const QByteArray damaged = R"({"error":{"string":"Invalid data found when processing input"}})";
    row("a video", "a.mp4", reportOf(film, "mov,mp4"), "");
    row("a video without a frame rate", "a.ogv", reportOf(withoutRate, "ogg"), "");
    row("a video without a frame rate, with sound", "a.ts", reportOf(withoutRate + ',' + sound, "mpegts"),
        "");
    row("a video without a frame rate, with a cover", "a.asf",
        reportOf(sound + ',' + cover + ',' + withoutRate, "asf"), "");
    row("a video without a frame rate under another name", "a", reportOf(withoutRate, "asf"), "");
    row("a damaged file called a video", "a.mkv", damaged, "");
    row("another file that cannot be read", "a.pdf", damaged, none);
    row("sound called a video", "a.mp4", reportOf(sound, "mov,mp4"), none);
    row("sound with a cover", "a.mp3", reportOf(sound + ',' + cover, "mp3"), none);
    row("a still", "a.avif", reportOf(still, "mov,mp4"), none);
    row("a picture", "a.jpg", reportOf(film, "image2"), "it is a picture.");
    row("a picture without a frame rate", "a.webp", reportOf(withoutRate, "webp_pipe"), "it is a picture.");
}

void ResizeFileTest::whatAFolderLeavesOut()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, report);
    const QString path = made(name);
    QVERIFY(!path.isEmpty());
    const FileProbe probe = FileProbe::fromReport(path, report);
    const auto skip = skipOf({.input = {name, path}, .isFromFolder = true}, probe);
    QTEST(skip ? skip->sentence : QString(), "sentence");
    QVERIFY(!skipOf({.input = {name, path}}, probe)); // named itself
}

void ResizeFileTest::aVideoWithoutARateIsRefusedByAnyWay_data()
{
    QTest::addColumn<bool>("isFromFolder");
    QTest::newRow("named itself") << false;
    QTest::newRow("from a folder") << true;
}

void ResizeFileTest::aVideoWithoutARateIsRefusedByAnyWay()
{
    QFETCH(bool, isFromFolder);
    test::FakeTools tools;
    tools.setBehaviour(u"sniffer"_s, u"print"_s, {QString::fromLatin1(reportOf(withoutRate, "ogg"))});
    const QString path = made(u"a.ogv"_s);
    const ResizeFile file{.input = {u"a.ogv"_s, path},
                          .output = {u"new.mp4"_s, m_folder.filePath(u"new.mp4"_s)},
                          .isFromFolder = isFromFolder};
    const FileEnd end = resizeFile(file, {.quiet = true});
    const auto *refused = std::get_if<Refused>(&end.outcome);
    QVERIFY(refused);
    QCOMPARE(refused->sentence,
             path + u": this seems to be an unsupported file (its video has no frame rate)."_s);
}

TESSALY_TEST_MAIN(ResizeFileTest)
#include "resize_file_test.moc"
