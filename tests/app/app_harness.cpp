#include "app/app_harness.h"

#include "platform/paths.h"
#include "platform/temporary_directory.h"
#include "support/test_case.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QDropEvent>
#include <QEventLoop>
#include <QMessageBox>
#include <QMimeData>
#include <QStatusBar>
#include <QTest>
#include <QTimer>

namespace tessaly::test {

using namespace Qt::StringLiterals;

AppHarness::AppHarness(bool attentionCanBeTold)
{
    QDir(folder.path()).mkdir(u"tmp"_s);
    setTemporaryRoot(folder.filePath(u"tmp"_s));
    delegate.connectTo(&window, attentionCanBeTold);
    delegate.applicationDidFinishLaunching(&window);
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window, waitLimit)) qFatal("The window did not come up");
}

AppHarness::~AppHarness()
{
    delegate.applicationWillTerminate(&window);
    setTemporaryRoot({});
}

QString AppHarness::makeFile(const QString &name)
{
    QString path = folder.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) qFatal("A test file could not be made");
    return path;
}

void AppHarness::letProberReport(int width, int height, const QString &duration)
{
    const QString report =
        uR"({"streams": [{"codec_type": "video", "codec_name": "vp9", "avg_frame_rate": "25/1", "width": %1, "height": %2}],
             "format": {"duration": "%3"}})"_s.arg(width)
            .arg(height)
            .arg(duration);
    letProberReport(report.toUtf8());
}

void AppHarness::letProberReport(const QByteArray &report)
{
    tools.setBehaviour(u"sniffer"_s, u"print"_s, {QString::fromUtf8(report)});
}

void AppHarness::letConverterMakeStills()
{
    QImage still(64, 36, QImage::Format_RGB32);
    still.fill(Qt::red);
    const QString path = folder.filePath(u"still.jpg"_s);
    if (!still.save(path)) qFatal("A still could not be made");
    tools.setBehaviour(u"creator"_s, u"copy-to-output"_s, {path});
}

QString AppHarness::copyOfClip(const QString &clip, const QString &name)
{
    QString path = folder.filePath(name);
    if (!QFile::copy(QStringLiteral(TESSALY_MEDIA_FOLDER "/") + clip, path)) qFatal("A clip is missing");
    return path;
}

void AppHarness::useRealConverter()
{
    tools.setBehaviour(u"creator"_s, u"become"_s, {FakeTools::realTool(u"creator"_s)});
    tools.forgetCalls(u"creator"_s);
}

void AppHarness::openForReal(const QString &path)
{
    useRealProber();
    delegate.openVideo(fileURL(path));
    useRealConverter();
}

void AppHarness::inEventLoop(const std::function<void()> &work)
{
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        work();
        loop.quit();
    });
    loop.exec();
}

void AppHarness::drop(const QString &path)
{
    sendDrop(delegate.posterView.get(), {QUrl::fromLocalFile(path)});
}

void AppHarness::openSize(int width, int height)
{
    letProberReport(width, height);
    drop(makeFile(u"clip.mp4"_s));
}

QFileDialog *AppHarness::panel() const
{
    for (QFileDialog *dialog : window.findChildren<QFileDialog *>()) {
        if (dialog->isVisible()) return dialog;
    }
    return nullptr;
}

void AppHarness::choose(const QString &path)
{
    QTRY_VERIFY(panel());
    panel()->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(path);
    const auto role =
        panel()->acceptMode() == QFileDialog::AcceptOpen ? QDialogButtonBox::Open : QDialogButtonBox::Save;
    QTest::mouseClick(panel()->findChild<QDialogButtonBox *>()->button(role), Qt::LeftButton);
    QTRY_VERIFY(!panel());
}

void AppHarness::saveTo(const QString &path)
{
    // A shortcut is one of the active window, which it may not be yet after a sheet.
    window.activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), &window);
    QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
    choose(path);
}

QWidget *AppHarness::alert() const
{
    for (QMessageBox *box : window.findChildren<QMessageBox *>()) {
        if (box->isVisible()) return box;
    }
    return nullptr;
}

QString AppHarness::alertText() const
{
    const auto *box = qobject_cast<const QMessageBox *>(alert());
    return box ? box->text() + u'\n' + box->informativeText() : QString();
}

QStringList AppHarness::alertButtons() const
{
    QStringList titles;
    for (int response = 1000;; ++response) {
        const auto *button =
            alert() ? alert()->findChild<QAbstractButton *>(u"alertButton%1"_s.arg(response)) : nullptr;
        if (!button) return titles;
        titles += button->text();
    }
}

void AppHarness::answerAlert(int response)
{
    answerAlertWithoutWaiting(response);
    QTRY_VERIFY(!alert());
}

void AppHarness::answerAlertWithoutWaiting(int response)
{
    QTest::mouseClick(alert()->findChild<QAbstractButton *>(u"alertButton%1"_s.arg(response)),
                      Qt::LeftButton);
}

QString AppHarness::told() const
{
    const QString status = find<QStatusBar>("statusBar")->currentMessage();
    const QString text = alertText().replace(u'\n', u' ');
    return status.isEmpty() ? text : text + u" | "_s + status;
}

void AppHarness::type(NumberField *field, const QString &text)
{
    QTest::mouseClick(field, Qt::LeftButton);
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, text);
}

void AppHarness::sendDrop(QWidget *target, const QList<QUrl> &urls)
{
    QMimeData data;
    data.setUrls(urls);
    sendDrop(target, data);
}

void AppHarness::sendDrop(QWidget *target, const QMimeData &data)
{
    QDragEnterEvent enter(target->rect().center(), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(target, &enter);
    if (!enter.isAccepted()) return;
    QDropEvent drop(target->rect().center(), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(target, &drop);
}

} // namespace tessaly::test
