#include "jobs/completion_text.h"
#include "support/test_case.h"

using namespace tessaly;
using namespace Qt::StringLiterals;

namespace {

FileProbe record(qint64 width, qint64 height, const QString &size)
{
    FileProbe probe;
    probe.videoWidth = width;
    probe.videoHeight = height;
    probe.fileSizeHuman = size;
    return probe;
}

class TestCompletionText : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void tellsResolutionsAndSizes();
    void takesEachFactFromItsProbe();
    void fallsBackToNeutralTexts();
    void writesPlainDecimals();
};

void TestCompletionText::tellsResolutionsAndSizes()
{
    const FileProbe output = record(1280, 720, u"6.1 MB"_s);
    QCOMPARE(completionText(record(1920, 1080, u"12.5 MB"_s), output, output),
             u"Input Resolution: 1920 x 1080 (12.5 MB)\nOutput Resolution: 1280 x 720 (6.1 MB)"_s);
}

void TestCompletionText::takesEachFactFromItsProbe()
{
    QCOMPARE(completionText(record(1, 2, u"first"_s), record(3, 4, u"second"_s), record(5, 6, u"third"_s)),
             u"Input Resolution: 1 x 2 (first)\nOutput Resolution: 5 x 6 (second)"_s);
}

void TestCompletionText::fallsBackToNeutralTexts()
{
    QCOMPARE(completionText({}, {}, {}),
             u"Input Resolution: 0 x 0 (Unknown File Size)\nOutput Resolution: 0 x 0 (Unknown File Size)"_s);
}

void TestCompletionText::writesPlainDecimals()
{
    const FileProbe large = record(1'000'000, -2, u"%1 <b>"_s);
    QCOMPARE(completionText(large, large, large),
             u"Input Resolution: 1000000 x -2 (%1 <b>)\nOutput Resolution: 1000000 x -2 (%1 <b>)"_s);
}

} // namespace

TESSALY_TEST_MAIN(TestCompletionText)
#include "completion_text_test.moc"
