#include "jobs/poster_frames.h"
#include "platform/bundle.h"
#include "platform/child_process.h"
#include "platform/temporary_directory.h"
#include "support/fake_tools.h"
#include "support/test_case.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace tessaly;
using namespace Qt::StringLiterals;

namespace {

class TestPosterFrames : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setTemporaryRoot(root.path()); }
    void cleanupTestCase() { setTemporaryRoot({}); }
    void liesAtTwelfths_data();
    void liesAtTwelfths();
    void namesItsFiles();
    void asksForOneFrame();
    void writesFramesForReal();

private:
    QTemporaryDir root;
};

void TestPosterFrames::liesAtTwelfths_data()
{
    QTest::addColumn<int>("n");
    QTest::addColumn<double>("duration");
    QTest::addColumn<QString>("position");
    const QStringList halfMinute{u"2.5"_s,  u"5.0"_s,  u"7.5"_s,  u"10.0"_s, u"12.5"_s, u"15.0"_s,
                                 u"17.5"_s, u"20.0"_s, u"22.5"_s, u"25.0"_s, u"27.5"_s};
    for (int n = 1; n <= posterFrameCount; ++n) {
        QTest::addRow("frame %d of no duration", n) << n << 0.0 << u"0.0"_s;
        QTest::addRow("frame %d of 12 seconds", n) << n << 12.0 << QString::number(n) + u".0"_s;
        QTest::addRow("frame %d of 30 seconds", n) << n << 30.0 << halfMinute.at(n - 1);
    }
    QTest::newRow("shortest digits") << 1 << 1.0 << u"0.08333333333333333"_s;
    QTest::newRow("the twelfth is rounded before it is multiplied") << 3 << 0.1 << u"0.025"_s;
    QTest::newRow("tiny, without exponent") << 1 << 0.00012 << u"0.00001"_s;
    QTest::newRow("huge, without exponent") << 1 << 1.2e17 << u"10000000000000000.0"_s;
}

void TestPosterFrames::liesAtTwelfths()
{
    QFETCH(int, n);
    QFETCH(double, duration);
    QTEST(posterPosition(n, duration), "position");
}

void TestPosterFrames::namesItsFiles()
{
    QCOMPARE(posterFrameFolder(), NSTemporaryDirectory() + u"/Images"_s);
    QCOMPARE(posterFramePath(1), posterFrameFolder() + u"/out1.jpg"_s);
    QCOMPARE(posterFramePath(11), posterFrameFolder() + u"/out11.jpg"_s);
    QCOMPARE(posterFramePath(0), posterFrameFolder() + u"/out0.jpg"_s);
    QCOMPARE(posterFramePath(-1), posterFrameFolder() + u"/out-1.jpg"_s);
    QVERIFY(!QFile::exists(posterFrameFolder()));
}

void TestPosterFrames::asksForOneFrame()
{
    QCOMPARE(posterFrameArguments(3, 30, u"/v/-a 'b' %d.mp4"_s),
             (QStringList{u"-v"_s, u"quiet"_s, u"-ss"_s, u"7.5"_s, u"-i"_s, u"/v/-a 'b' %d.mp4"_s,
                          u"-frames:v"_s, u"1"_s, u"-y"_s, posterFramePath(3)}));
}

void TestPosterFrames::writesFramesForReal()
{
    test::FakeTools tools;
    tools.useRealTool(u"creator"_s);
    tools.confine();
    QVERIFY(QDir().mkpath(posterFrameFolder()));
    for (const int n : {1, posterFrameCount}) {
        const auto outcome =
            runToEnd(pathForResource(u"creator"_s).value(),
                     posterFrameArguments(n, 2, QStringLiteral(TESSALY_MEDIA_FOLDER "/plain.mp4")), {},
                     placesForFile(posterFramePath(n)));
        QVERIFY(outcome.succeeded());
        QFile frame(posterFramePath(n));
        QVERIFY(frame.open(QIODevice::ReadOnly));
        QCOMPARE(frame.read(2), "\xFF\xD8"); // how a JPEG begins
    }
}

} // namespace

TESSALY_TEST_MAIN(TestPosterFrames)
#include "poster_frames_test.moc"
