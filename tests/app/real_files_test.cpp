// Files that cannot be opened or written, through the window, with the real prober and converter.
#include "app/app_harness.h"
#include "jobs/output_name.h"
#include "platform/printing.h"
#include "support/ordinary_user.h"
#include "support/seen.h"
#include "support/test_case.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QStatusBar>

#include <cmath>
#include <csignal>
#include <sys/stat.h>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

namespace {

const auto failed = u"Video could not be resized.\n"_s;

QByteArray checksum(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result().toHex() : "unreadable"_ba;
}

} // namespace

class TestRealFiles : public TestCase
{
    Q_OBJECT

private:
    std::unique_ptr<AppHarness> app;
    QString input;
    QByteArray before;

    QString output() const { return app->folder.filePath(u"out.mp4"_s); }
    QString barDetail() const { return app->delegate.progressDetail->text(); }

    void open(const QString &clip)
    {
        input = app->copyOfClip(clip, u"input.mp4"_s);
        app->openForReal(input);
        before = checksum(input);
    }
    void saveAs(const QString &path)
    {
        app->delegate.saveResponse(1, path);
        QTRY_VERIFY(app->alert());
    }
    QString inputFate() const
    {
        return checksum(input) == before ? u"input unchanged"_s : u"input CHANGED"_s;
    }
    bool isConverting() const
    {
        return app->delegate.progressBar->doubleValue() > 0 && QFile::exists(output());
    }

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        setPrintTarget(PrintTarget::nowhere);
        app = std::make_unique<AppHarness>();
    }
    void cleanup() { app.reset(); }

    void whatIsNoVideoIsRefused_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char *kind : {"an empty file", "a text called mp4", "a folder", "sound.m4a", "cover.m4a"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }
    void whatIsNoVideoIsRefused()
    {
        QFETCH(QString, kind);
        QString path = kind == "a folder"_L1 ? app->folder.path() : app->folder.filePath(u"x.mp4"_s);
        if (kind == "an empty file"_L1) app->makeFile(u"x.mp4"_s);
        if (kind == "a text called mp4"_L1) {
            QFile text(path);
            QVERIFY(text.open(QIODevice::WriteOnly) && text.write("Dear Sir or Madam,\n") > 0);
        }
        if (kind.endsWith(".m4a"_L1)) path = app->copyOfClip(kind, u"x.mp4"_s);
        app->openSize(640, 360);
        app->openForReal(path);
        seen(u"%1; %2, save %3"_s.arg(app->told(), app->delegate.inputLBL->text(),
                                      app->delegate.saveBTN->isEnabled() ? u"enabled"_s : u"disabled"_s));
        QVERIFY(app->alertText().startsWith("Seems to be an unsupported file."_L1));
        QCOMPARE(app->delegate.inputLBL->text(), u"Input: 0 x 0"_s);
        QVERIFY(!app->delegate.saveBTN->isEnabled() && !app->delegate.widthTF->isEnabled());
    }

    // The prober takes a still picture for a video, and so does the window.
    void aStillPictureIsJudgedByItsReport()
    {
        const QString path = app->copyOfClip(u"cover.png"_s, u"x.png"_s);
        const bool isVideo = FileProbe((app->useRealProber(), path)).hasVideoTrack;
        app->openForReal(path);
        seen(u"the report says %1; %2, %3"_s.arg(isVideo ? u"video"_s : u"no video"_s,
                                                 app->delegate.inputLBL->text(),
                                                 app->alert() ? app->told() : u"no alert"_s));
        QCOMPARE(app->alert() == nullptr, isVideo);
        QCOMPARE(app->delegate.saveBTN->isEnabled(), isVideo);
    }

    void theConverterIsKilled()
    {
        open(u"long.mp4"_s);
        app->delegate.saveResponse(1, output());
        QTRY_VERIFY(isConverting());
        ::kill(static_cast<pid_t>(app->tools.runningProcesses(u"creator"_s).value(0)), SIGKILL);
        QTRY_VERIFY(app->alert());
        seen(app->told() + u"; "_s + inputFate() +
             (QFile::exists(output()) ? u", output there"_s : u", output gone"_s));
        QCOMPARE(app->alertText(), failed + u"ffmpeg was killed by the system or by another program."_s);
        QCOMPARE(checksum(input), before);
        QVERIFY(!QFile::exists(output()));
    }

    void theTargetCannotBeWritten_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("sentence");
        QTest::newRow("an unwritable folder")
            << u"closed/out.mp4"_s << u"You do not have permission to write the new video there."_s;
        QTest::newRow("a folder of that name")
            << u"folder.mp4"_s << u"The name of the new video belongs to a folder."_s;
        QTest::newRow("a folder that vanished")
            << u"gone/out.mp4"_s << u"The folder for the new video does not exist."_s;
    }
    void theTargetCannotBeWritten()
    {
        QFETCH(QString, target);
        QFETCH(QString, sentence);
        open(u"plain.mp4"_s);
        QDir folder(app->folder.path());
        QVERIFY(folder.mkdir(u"folder.mp4"_s) && folder.mkdir(u"closed"_s));
        QCOMPARE(::chmod(qPrintable(folder.filePath(u"closed"_s)), 0555), 0);
        for (const QString &path : {folder.path(), app->tools.folder()})
            QCOMPARE(::chmod(qPrintable(path), 0755), 0);
        app->tools.useRealTool(u"creator"_s); // a fake could not note its start
        {
            const OrdinaryUser user;
            saveAs(folder.filePath(target));
        }
        seen(app->told() + u"; "_s + inputFate());
        QCOMPARE(app->alertText(), failed + sentence);
        QCOMPARE(checksum(input), before);
    }

    void theTargetIsTheInput_data()
    {
        QTest::addColumn<QString>("target");
        QTest::newRow("the same string") << u"input.mp4"_s;
        QTest::newRow("/./") << u"./input.mp4"_s;
        QTest::newRow("/../") << u"folder/../input.mp4"_s;
        QTest::newRow("a symbolic link") << u"symbolic.mp4"_s;
        QTest::newRow("a hard link") << u"hard.mp4"_s;
    }
    void theTargetIsTheInput()
    {
        QFETCH(QString, target);
        open(u"plain.mp4"_s);
        const QDir folder(app->folder.path());
        QVERIFY(folder.mkdir(u"folder"_s));
        QVERIFY(QFile::link(input, folder.filePath(u"symbolic.mp4"_s)));
        QCOMPARE(::link(qPrintable(input), qPrintable(folder.filePath(u"hard.mp4"_s))), 0);
        saveAs(folder.path() + u'/' + target);
        seen(u"%1; %2, converter started %3 times"_s.arg(app->told(), inputFate())
                 .arg(app->tools.calls(u"creator"_s).size()));
        QCOMPARE(app->alertText(), u"Input file name is same as the output file name!\n"
                                   "Please specify a different file to save."_s);
        QVERIFY(app->tools.calls(u"creator"_s).isEmpty());
        QCOMPARE(checksum(input), before);
    }

    void theInputChangesMeanwhile_data()
    {
        QTest::addColumn<bool>("removed");
        QTest::newRow("removed") << true;
        QTest::newRow("cut short") << false;
    }
    void theInputChangesMeanwhile()
    {
        QFETCH(bool, removed);
        open(u"long.mp4"_s);
        app->delegate.widthTF->setIntegerValue(320); // all of it is converted
        app->delegate.heightTF->setIntegerValue(180);
        app->delegate.saveResponse(1, output());
        QTRY_VERIFY(QFile::exists(output()));
        const pid_t converter = static_cast<pid_t>(app->tools.runningProcesses(u"creator"_s).value(0));
        QCOMPARE(::kill(converter, SIGSTOP), 0); // it reads no further until the input has changed
        QVERIFY(removed ? QFile::remove(input) : QFile::resize(input, 3'000'000));
        QCOMPARE(::kill(converter, SIGCONT), 0);
        QTRY_VERIFY(app->alert());
        const double seconds = FileProbe(output()).duration;
        seen(u"%1; the new video has %2 of 30 s"_s.arg(app->told()).arg(seconds));
        QVERIFY2(app->alertText().startsWith("Video Resized Successfully!"_L1), qPrintable(app->told()));
        QCOMPARE(std::abs(seconds - 30) < 0.3, removed);
        const QString status = app->find<QStatusBar>("statusBar")->currentMessage();
        QCOMPARE(status.startsWith("The new video is shorter than the original says: "_L1), !removed);
    }

    void anInputOfNoLength_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<bool>("busy");
        QTest::newRow("without a duration") << u"no_duration.webm"_s << true;
        QTest::newRow("duration 0") << QString() << true;
        QTest::newRow("one frame") << u"one_frame.mp4"_s << false; // of 0.04 s
    }
    void anInputOfNoLength()
    {
        QFETCH(QString, clip);
        QFETCH(bool, busy);
        app->letProberReport(640, 360, u"0"_s);
        if (clip.isEmpty())
            app->drop(app->makeFile(u"clip.mp4"_s));
        else
            open(clip);
        app->delegate.widthTF->setIntegerValue(640); // what the converter is going to make
        app->delegate.heightTF->setIntegerValue(360);
        app->tools.setSteps(u"creator"_s,
                            {{u"complain"_s, u"time=00:00:00.00 \r"_s},
                             {u"wait-until-read"_s}, // a chunk of its own
                             {u"complain"_s, u"time=00:00:00.04 \r"_s},
                             {u"wait-for-file"_s, app->folder.filePath(u"go ahead"_s)},
                             {u"progress"_s, u"0"_s, u"time=00:00:01.00 \r"_s},
                             {u"copy-to-output"_s, QStringLiteral(TESSALY_MEDIA_FOLDER "/plain.mp4")}});
        QStringList shown;
        app->delegate.saveResponse(1, output());
        QTRY_VERIFY(app->delegate.progressWindow->isVisible());
        const QDeadlineTimer limit(tessaly::test::waitLimit);
        while (app->delegate.progressWindow->isVisible() && !limit.hasExpired()) {
            const bool isBusy = app->delegate.progressBar->isBusy();
            const QString text =
                isBusy ? u"busy"_s : QString::number(app->delegate.progressBar->doubleValue());
            for (const QString &what : {text, barDetail()})
                if (!what.isEmpty() && !shown.contains(what)) shown += what;
            if (isBusy || app->delegate.progressBar->doubleValue() > 0) app->makeFile(u"go ahead"_s);
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        }
        QTRY_VERIFY(app->alert());
        seen(u"duration %1 s; shown: %2"_s.arg(app->delegate.globalFP->duration).arg(shown.join(u' ')));
        QCOMPARE(shown.contains(u"busy"_s), busy);
        QVERIFY(!shown.join(u' ').contains(u"nan"_s) && !shown.join(u' ').contains(u"inf"_s));
        QVERIFY(app->alertText().startsWith("Video Resized Successfully!"_L1));
    }

    void names_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("line break") << u"two\nlines.mp4"_s;
        QTest::newRow("quotes") << u"\"double\" 'single' `back`.mp4"_s;
        QTest::newRow("markup") << u"<b>bold.mp4"_s;
        QTest::newRow("ampersand") << u"R&D &amp; more.mp4"_s;
        QTest::newRow("emoji") << u"\U0001F600.mp4"_s;
        QTest::newRow("255 bytes") << QString(251, u'x') + u".mp4"_s;
        QTest::newRow("leading dash") << u"-y.mp4"_s;
        QTest::newRow("pattern") << u"%d %03d.mp4"_s;
        QTest::newRow("trailing dot") << u"clip."_s;
    }
    void names()
    {
        QFETCH(QString, name);
        app->openForReal(app->copyOfClip(u"one_frame.mp4"_s, name));
        const QString title = app->window.windowHandle()->title();
        QVERIFY(QDir(app->folder.path()).mkdir(u"new"_s));
        const QString target = withMp4Extension(app->folder.filePath(u"new/"_s + name));
        saveAs(target);
        const QString report = app->alertText().section(u'\n', 0, 0);
        QFile::remove(target);
        app->answerAlertWithoutWaiting(1002); // play: the alert names what is gone
        QTRY_VERIFY(app->alertText().contains("no longer there"_L1));
        const QString said = app->alertText().remove(u'\u200b'); // where a long name may be broken
        seen(u"title \"%1\", %2, \"%3\""_s.arg(title, report, said));
        QCOMPARE(title, name + u" — Tessaly"_s);
        QCOMPARE(report, u"Video Resized Successfully!"_s);
        QVERIFY2(said.startsWith(u"“%1” is no longer there."_s.arg(QFileInfo(target).fileName())),
                 qPrintable(said));
        QCOMPARE(app->tools.calls(u"creator"_s).last().last(), target);
    }

    void typedSizes_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("passedOn");
        QTest::addColumn<QString>("sentence");
        const auto tooSmall =
            u"The new video came out as 640 x 360, not 0 x 0: choose a size of at least 2 x 2."_s;
        QTest::newRow("empty") << u""_s << u"scale=0:0"_s << tooSmall;
        QTest::newRow("letters") << u"abc"_s << u"scale=0:0"_s << tooSmall;
        QTest::newRow("grouped") << u"1,920"_s << u"scale=0:0"_s << tooSmall;
        QTest::newRow("negative")
            << u"-3"_s << u"scale=-4:-2"_s
            << u"The new video came out as 640 x 360, not -4 x -2: choose a size of at least 2 x 2."_s;
        QTest::newRow("zero") << u"0"_s << u"scale=0:0"_s << tooSmall;
        QTest::newRow("with an exponent") << u"1e9"_s << u"scale=0:0"_s << tooSmall;
        QTest::newRow("beyond 64 bits")
            << u"99999999999999999999"_s << u"scale=9223372036854775806:5188146770730811392"_s
            << u"The new video came out as 640 x 360, not 9223372036854775806 x 5188146770730811392: choose "
               u"a "
               "smaller size."_s;
    }
    void typedSizes()
    {
        QFETCH(QString, typed);
        QFETCH(QString, passedOn);
        QFETCH(QString, sentence);
        open(u"plain.mp4"_s);
        app->type(app->delegate.widthTF.get(), typed);
        app->saveTo(output());
        QTRY_VERIFY(app->alert());
        const QString filter = app->tools.calls(u"creator"_s).last().filter(u"scale="_s).value(0);
        seen(u"%1; %2"_s.arg(filter, app->told()));
        QCOMPARE(filter, passedOn + u",setsar=1:1"_s);
        QCOMPARE(app->alertText(), failed + sentence);
        QVERIFY(!QFile::exists(output()));
    }
};

TESSALY_GUI_TEST_MAIN(TestRealFiles)
#include "real_files_test.moc"
