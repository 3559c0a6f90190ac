#include "jobs/output_name.h"
#include "support/test_case.h"

using namespace tessaly;

namespace {

class TestOutputName : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void endsInMp4_data();
    void endsInMp4();
};

void TestOutputName::endsInMp4_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");
    QTest::newRow("bare name") << "/v/Resized"
                               << "/v/Resized.mp4";
    QTest::newRow("has it") << "/v/out.mp4"
                            << "/v/out.mp4";
    QTest::newRow("has it in capitals") << "/v/out.MP4"
                                        << "/v/out.MP4";
    QTest::newRow("has it in mixed case") << "/v/out.mP4"
                                          << "/v/out.mP4";
    QTest::newRow("another extension") << "/v/a.mov"
                                       << "/v/a.mov.mp4";
    QTest::newRow("a dot at the end") << "/v/noext."
                                      << "/v/noext.mp4";
    QTest::newRow("two dots at the end") << "/v/noext.."
                                         << "/v/noext..mp4";
    QTest::newRow("dots inside") << "/v/name.with.dots"
                                 << "/v/name.with.dots.mp4";
    QTest::newRow("mp4 without a dot") << "/v/mp4"
                                       << "/v/mp4.mp4";
    QTest::newRow("mp4 only in the folder") << "/v.mp4/out"
                                            << "/v.mp4/out.mp4";
    QTest::newRow("a space behind it") << "/v/out.mp4 "
                                       << "/v/out.mp4 .mp4";
    QTest::newRow("extension with more behind") << "/v/out.mp4v"
                                                << "/v/out.mp4v.mp4";
    QTest::newRow("relative") << "out"
                              << "out.mp4";
    QTest::newRow("hidden name") << "/v/.hidden"
                                 << "/v/.hidden.mp4";
    QTest::newRow("emoji and percent")
        << QString::fromUtf8("/v/\xF0\x9F\x98\x80%d") << QString::fromUtf8("/v/\xF0\x9F\x98\x80%d.mp4");
    QTest::newRow("folder") << "/v/"
                            << "/v/";
    QTest::newRow("this folder") << "/v/."
                                 << "/v/.";
    QTest::newRow("parent folder") << ".."
                                   << "..";
    QTest::newRow("empty") << ""
                           << "";
}

void TestOutputName::endsInMp4()
{
    QFETCH(QString, path);
    QFETCH(QString, expected);
    QCOMPARE(withMp4Extension(path), expected);
    QCOMPARE(withMp4Extension(withMp4Extension(path)), expected);
}

} // namespace

TESSALY_TEST_MAIN(TestOutputName)
#include "output_name_test.moc"
