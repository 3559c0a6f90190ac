// The whole way: open, choose a size, save, and the file that comes out.
#include "e2e/end_to_end_case.h"
#include "e2e/media_facts.h"
#include "e2e/processes.h"
#include "e2e/tasks.h"
#include "support/seen.h"

#include <QRegularExpression>

#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace tessaly::e2e;
using tessaly::test::seen;

class ResizingTest : public EndToEndCase
{
    Q_OBJECT

private Q_SLOTS:
    void halvesByTheSlider();
    void takesATypedWidthThatWasNotCommitted();
    void takesBothSidesInFreeMode();
    void keepsAPhoneVideoUpright();
    void mixesSurroundSoundDownToStereo();
    void addsTheExtensionToAName();
    void handsOnNamesLiterally();
    void terminalDoesNotReachTheConverter_data();
    void terminalDoesNotReachTheConverter();
};

namespace {

const auto success = u"Video Resized Successfully!"_s;

// The second label of the success alert, with any sizes in bytes.
bool isReport(const QString &text, const QString &input, const QString &output)
{
    const QRegularExpression pattern(
        u"^Input Resolution: %1 \\([0-9.,]+ [kKM]?[Bb]y?t?e?s?\\)\nOutput Resolution: %2 \\([0-9.,]+ [kKM]?[Bb]y?t?e?s?\\)$"_s
            .arg(input, output));
    return pattern.match(text).hasMatch();
}

// A terminal in which a program runs, in the foreground or behind another one that has it.
class Terminal
{
public:
    Terminal() { m_isOpen = ::openpty(&m_hand, &m_program, nullptr, nullptr, nullptr) == 0; }
    ~Terminal()
    {
        ::close(m_hand);
        ::close(m_program);
    }
    bool isOpen() const { return m_isOpen; }
    // In the new process: its terminal, and its standard input.
    void take(bool inTheBackground) const
    {
        ::setsid();
        ::ioctl(m_program, TIOCSCTTY, 0);
        ::dup2(m_program, STDIN_FILENO);
        if (!inTheBackground) return;
        const pid_t other = ::_Fork(); // what may follow a fork of threads
        if (other == 0) {
            ::setpgid(0, 0);
            ::close_range(0, ~0U, 0);
            for (;;)
                ::pause(); // the terminal's end ends it
        }
        ::setpgid(other, other);
        ::tcsetpgrp(m_program, other);
    }
    bool isInTheForeground(qint64 program) const
    {
        return ::tcgetpgrp(m_hand) == ::getpgid(static_cast<pid_t>(program));
    }
    bool type(const QByteArray &keys) const
    {
        return ::write(m_hand, keys.constData(), keys.size()) == keys.size();
    }

private:
    bool m_isOpen = false;
    int m_hand = -1;
    int m_program = -1;
};

} // namespace

void ResizingTest::halvesByTheSlider()
{
    const QString input = copyOfClip(u"plain.mp4"_s, u"input.mp4"_s);
    const QString output = file(u"half.mp4"_s);
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, input, u"640 x 360"_s));
    QVERIFY(setPercent(tessaly, 50));
    QCOMPARE(tessaly.fieldText(u"Output width"_s), u"320"_s);
    QCOMPARE(tessaly.fieldText(u"Output height"_s), u"180"_s);
    QVERIFY(chooseOutput(tessaly, output));
    const QStringList labels = waitForAlert(tessaly);
    QCOMPARE(labels.size(), 2);
    QCOMPARE(labels.at(0), success);
    QVERIFY2(isReport(labels.at(1), u"640 x 360"_s, u"320 x 180"_s), qPrintable(labels.at(1)));
    for (const QString &button : {u"OK"_s, u"Show in Finder"_s, u"Launch Video in QuickTime"_s})
        QVERIFY(tessaly.isEnabled(Role::button, button));

    QVERIFY(tessaly.press({u"Return"_s}));
    QTRY_VERIFY(!tessaly.shows(Role::alert));
    QVERIFY(tessaly.isEnabled(Role::button, u"Save"_s));
    QCOMPARE(mediaFacts(output).size, QSize(320, 180));
    QCOMPARE(checksum(input), checksum(clip(u"plain.mp4"_s)));
    QVERIFY(runningMediaTools().isEmpty());
    QCOMPARE(tessaly.standardOutput().count(u'\n'), 1);
    QVERIFY(tessaly.standardOutput().startsWith(u"[\"-i\", \"%1\", "_s.arg(input)));
    QCOMPARE(tessaly.standardError(), QString());
}

// The odd width is lowered and the height follows, though nobody left the field.
void ResizingTest::takesATypedWidthThatWasNotCommitted()
{
    const QString output = file(u"typed.mp4"_s);
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, clip(u"plain.mp4"_s), u"640 x 360"_s));
    QVERIFY(typeSize(tessaly, u"Output width"_s, u"321"_s));
    QVERIFY(chooseOutput(tessaly, output));
    QCOMPARE(waitForAlert(tessaly).value(0), success);
    QCOMPARE(mediaFacts(output).size, QSize(320, 180));
    QCOMPARE(tessaly.fieldText(u"Output height"_s), u"180"_s);
}

void ResizingTest::takesBothSidesInFreeMode()
{
    const QString output = file(u"free.mp4"_s);
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, clip(u"plain.mp4"_s), u"640 x 360"_s));
    QVERIFY(tessaly.click(Role::checkBox, u"Keep proportions"_s));
    QTRY_VERIFY(tessaly.shows(Role::label, u"Height:"_s));
    QVERIFY(tessaly.waitForFocus(Role::field, u"Output height"_s));
    QVERIFY(tessaly.typeOver(u"101"_s));
    QVERIFY(tessaly.press({u"Return"_s}));
    QTRY_COMPARE(tessaly.fieldText(u"Output height"_s), u"100"_s);
    QCOMPARE(tessaly.fieldText(u"Output width"_s), u"640"_s);
    QVERIFY(typeSize(tessaly, u"Output width"_s, u"200"_s));
    QTRY_VERIFY(tessaly.shows(Role::label, u"Width:"_s));
    QVERIFY(chooseOutput(tessaly, output));
    QCOMPARE(waitForAlert(tessaly).value(0), success);
    QCOMPARE(mediaFacts(output).size, QSize(200, 100));
}

void ResizingTest::keepsAPhoneVideoUpright()
{
    const QString input = clip(u"portrait.mp4"_s);
    const QString output = file(u"upright.mp4"_s);
    QCOMPARE(mediaFacts(input).turned, -90);
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, input, u"360 x 640"_s));
    QVERIFY(chooseOutput(tessaly, output));
    const QStringList labels = waitForAlert(tessaly);
    QVERIFY2(isReport(labels.value(1), u"360 x 640"_s, u"360 x 640"_s), qPrintable(labels.join(u'\n')));
    QCOMPARE(mediaFacts(output).size, QSize(360, 640));
    QCOMPARE(mediaFacts(output).turned, 0);
    const double change = difference(firstPicture(output), firstPicture(input));
    QVERIFY2(change < 10, qPrintable(QString::number(change)));
}

void ResizingTest::mixesSurroundSoundDownToStereo()
{
    const QString input = clip(u"surround.mkv"_s);
    const QString output = file(u"stereo.mp4"_s);
    QCOMPARE(mediaFacts(input).channels, 6);
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, input, u"320 x 180"_s));
    QVERIFY(chooseOutput(tessaly, output));
    QCOMPARE(waitForAlert(tessaly).value(0), success);
    QCOMPARE(mediaFacts(output).channels, 2);
    QCOMPARE(mediaFacts(output).size, QSize(320, 180));
}

void ResizingTest::addsTheExtensionToAName()
{
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, clip(u"plain.mp4"_s), u"640 x 360"_s));
    QVERIFY(setPercent(tessaly, 20));
    QVERIFY(chooseOutput(tessaly, file(u"name.mov"_s)));
    QCOMPARE(waitForAlert(tessaly).value(0), success);
    QCOMPARE(mediaFacts(file(u"name.mov.mp4"_s)).size, QSize(128, 72));
    QVERIFY(!QFile::exists(file(u"name.mov"_s)));
}

void ResizingTest::handsOnNamesLiterally()
{
    const QString input = copyOfClip(u"plain.mp4"_s, u"-<b> 'a' & \"b\" %d.mp4"_s);
    const QString output = file(u"-y \"x\" <i> &amp; $(touch gone) 100%.mp4"_s);
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, input, u"640 x 360"_s));
    QCOMPARE(posterFrames().size(), 11);
    QVERIFY(setPercent(tessaly, 20));
    QVERIFY(chooseOutput(tessaly, output));
    QCOMPARE(waitForAlert(tessaly).value(0), success);
    QCOMPARE(mediaFacts(output).size, QSize(128, 72));
}

void ResizingTest::terminalDoesNotReachTheConverter_data()
{
    QTest::addColumn<bool>("inTheBackground");
    QTest::newRow("in the foreground") << false;
    QTest::newRow("in the background") << true;
}

// A converter that read the terminal would stop at a "q" with a shortened file, and one in the background
// would be suspended.
void ResizingTest::terminalDoesNotReachTheConverter()
{
    QFETCH(bool, inTheBackground);
    const Terminal terminal;
    QVERIFY(terminal.isOpen());
    const QString output = file(u"whole.mp4"_s);
    Program &tessaly = launch({.beforeStart = [&] { terminal.take(inTheBackground); }});
    QCOMPARE(terminal.isInTheForeground(tessaly.id()), !inTheBackground);
    QVERIFY(openVideo(tessaly, clip(u"long.mp4"_s), u"1280 x 720"_s));
    QVERIFY(setPercent(tessaly, 10));
    QVERIFY(chooseOutput(tessaly, output));
    QTRY_VERIFY_WITH_TIMEOUT(suspendConverter(), workTime);
    QVERIFY(terminal.type("q\nq\n"));
    resumeConverters();
    const QString told = waitForAlert(tessaly).value(0);
    const double seconds = mediaFacts(output).seconds;
    seen(u"%1 terminal's foreground; %2 The new video has %3 of 30 s"_s
             .arg(terminal.isInTheForeground(tessaly.id()) ? u"in the"_s : u"not in the"_s, told)
             .arg(seconds));
    QCOMPARE(told, success);
    QVERIFY(qAbs(seconds - 30) < 0.3);
}

TESSALY_TEST_MAIN(ResizingTest)
#include "resizing_test.moc"
