// What a screen reader speaks along the whole way.
#include "e2e/end_to_end_case.h"
#include "e2e/processes.h"
#include "e2e/screen_reader.h"
#include "e2e/tasks.h"
#include "support/seen.h"

using namespace Qt::StringLiterals;
using namespace tessaly::e2e;
using tessaly::test::seen;

class SpeakingTest : public EndToEndCase
{
    Q_OBJECT

private Q_SLOTS:
    void tellsEachStepOnce();
};

namespace {

const auto sizeSlider = u"Size in percent of the input"_s;
const auto frameSlider = u"Which still of the video is shown"_s;

bool hears(const ScreenReader &reader, const QString &line, int times = 1)
{
    const bool isHeard = QTest::qWaitFor([&] { return reader.spoken().count(line) >= times; }, workTime);
    if (!isHeard) qInfo("heard so far:\n%s", qUtf8Printable(reader.spoken().join(u'\n')));
    return isHeard;
}

QList<double> valuesTold(const ScreenReader &reader, qsizetype from)
{
    QList<double> values;
    for (const Announcement &announcement : reader.announcements().sliced(from))
        values += announcement.value;
    return values;
}

// The first of the expected lines that does not come after those before it; empty when all do. Windows
// without a window manager are activated more often than needed, so there may be others between them.
QString firstMissing(const QStringList &expected, const QStringList &lines)
{
    qsizetype from = 0;
    for (const QString &line : expected) {
        const qsizetype at = lines.indexOf(line, from);
        if (at < 0) return line;
        from = at + 1;
    }
    return {};
}

} // namespace

// Every step waits until it was heard, however long that takes.
void SpeakingTest::tellsEachStepOnce()
{
    const ScreenReader reader(desktop().accessibilityBus());
    Program &tessaly = launch();
    QVERIFY(hears(reader, u"focus Open Video..."_s));
    QCOMPARE(tessaly.find(Role::button, u"Open Video..."_s)->description(),
             u"Drop a video here, or press Ctrl+O to open one"_s);

    QVERIFY(chooseVideo(tessaly, clip(u"long.mp4"_s)));
    QTRY_VERIFY_WITH_TIMEOUT(suspendConverter(), workTime);
    QVERIFY(hears(reader, u"focus Analyzing Video..."_s));
    resumeConverters();
    QVERIFY(hears(reader, u"focus Scale, 100 percent, 1280 by 720 pixels"_s));

    QVERIFY(tessaly.click(Role::slider, frameSlider));
    QVERIFY(hears(reader, u"focus Frame 6 of 11"_s));
    const qsizetype before = reader.announcements().size();
    QVERIFY(tessaly.press({u"Right"_s}));
    QVERIFY(hears(reader, u"name Frame 7 of 11"_s));
    QVERIFY(tessaly.click(Role::slider, sizeSlider));
    QVERIFY(hears(reader, u"focus Scale, 100 percent, 1280 by 720 pixels"_s, 2));
    QVERIFY(tessaly.press({u"Home"_s}));
    QVERIFY(hears(reader, u"name Scale, 0 percent, 0 by 0 pixels"_s));
    QVERIFY(tessaly.press({u"Prior"_s}));
    QVERIFY(hears(reader, u"name Scale, 10 percent, 128 by 72 pixels"_s));
    QCOMPARE(valuesTold(reader, before), (QList<double>{7, 0, 10})); // each change once
    QVERIFY(tessaly.click(Role::checkBox, u"Keep proportions"_s));
    QVERIFY(hears(reader, u"name Height, 10 percent, 72 pixels"_s));

    QVERIFY(chooseOutput(tessaly, file(u"cancelled.mp4"_s)));
    QTRY_VERIFY_WITH_TIMEOUT(suspendConverter(), workTime);
    QVERIFY(hears(reader, u"focus Resizing Video..."_s));
    QVERIFY(tessaly.press({u"Escape"_s}));
    QVERIFY(hears(reader, u"name Cancelled"_s));

    QVERIFY(chooseOutput(tessaly, file(u"made.mp4"_s)));
    QCOMPARE(waitForAlert(tessaly).value(0), u"Video Resized Successfully!"_s);
    QVERIFY(hears(reader, u"focus OK"_s));
    QCOMPARE(tessaly.find(Role::alert)->description(), QString()); // its labels say it

    const QStringList &spoken = reader.spoken();
    const QStringList expected{u"window Tessaly"_s,
                               u"focus Open Video..."_s,
                               u"window Analyzing Video..."_s,
                               u"focus Analyzing Video..."_s,
                               u"name long.mp4"_s,
                               u"name Scale, 100 percent, 1280 by 720 pixels"_s,
                               u"focus Frame 6 of 11"_s,
                               u"name Frame 7 of 11"_s,
                               u"focus Scale, 100 percent, 1280 by 720 pixels"_s,
                               u"name Scale, 0 percent, 0 by 0 pixels"_s,
                               u"name Scale, 10 percent, 128 by 72 pixels"_s,
                               u"name Height, 10 percent, 72 pixels"_s,
                               u"window Resizing Video..."_s,
                               u"name Cancelled"_s,
                               u"window Video Resized Successfully!"_s,
                               u"focus OK"_s};
    seen(spoken.join(u", "_s));
    QVERIFY2(firstMissing(expected, spoken).isEmpty(),
             qPrintable(firstMissing(expected, spoken) + u" is missing in\n"_s + spoken.join(u'\n')));
    for (const QString &line : expected) {
        const bool isChange = line.startsWith("name "_L1) || line.startsWith("window Video"_L1);
        if (isChange) QVERIFY2(spoken.count(line) == 1, qPrintable(line + u'\n' + spoken.join(u'\n')));
    }
    QVERIFY(spoken.count(u"says Cancelled"_s) <= 1);
}

TESSALY_TEST_MAIN(SpeakingTest)
#include "speaking_test.moc"
