#include "cli/output_size.h"
#include "support/test_case.h"

using namespace Qt::StringLiterals;
using namespace tessaly;

class OutputSizeTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void size_data();
    void size();
};

void OutputSizeTest::size_data()
{
    QTest::addColumn<QSize>("input");
    QTest::addColumn<double>("percent");
    QTest::addColumn<int>("width");  // 0: not given
    QTest::addColumn<int>("height"); // 0: not given
    QTest::addColumn<QString>("result");
    const QSize hd(1920, 1080);
    QTest::newRow("nothing said") << hd << 100.0 << 0 << 0 << u"1920x1080"_s;
    QTest::newRow("nothing said, odd input: computed as any percentage")
        << QSize(853, 481) << 100.0 << 0 << 0 << u"854x482"_s;
    QTest::newRow("a half") << hd << 50.0 << 0 << 0 << u"960x540"_s;
    QTest::newRow("a third") << hd << 33.3 << 0 << 0 << u"640x360"_s;
    QTest::newRow("a tie") << QSize(854, 480) << 50.0 << 0 << 0 << u"428x240"_s;
    QTest::newRow("more than the slider has") << hd << 300.0 << 0 << 0 << u"5760x3240"_s;
    QTest::newRow("width: lowered, the height follows") << hd << 100.0 << 1001 << 0 << u"1000x562"_s;
    QTest::newRow("height: lowered, the width follows") << hd << 100.0 << 0 << 541 << u"960x540"_s;
    QTest::newRow("both are free") << hd << 100.0 << 1001 << 77 << u"1000x76"_s;
    QTest::newRow("too small") << hd << 0.01 << 0 << 0 << u"none"_s;
    QTest::newRow("a side comes out at nothing") << QSize(4000, 10) << 100.0 << 100 << 0 << u"none"_s;
    QTest::newRow("not computable") << QSize(1920, 0) << 100.0 << 0 << 100 << u"none"_s;
}

void OutputSizeTest::size()
{
    QFETCH(QSize, input);
    QFETCH(double, percent);
    QFETCH(int, width);
    QFETCH(int, height);
    SizeWish wish{.percent = percent};
    if (width != 0) wish.width = width;
    if (height != 0) wish.height = height;
    const std::optional<FrameSize> size = outputSize(wish, input.width(), input.height());
    QTEST(size ? u"%1x%2"_s.arg(size->width).arg(size->height) : u"none"_s, "result");
}

TESSALY_TEST_MAIN(OutputSizeTest)
#include "output_size_test.moc"
