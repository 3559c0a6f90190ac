#include "bench/live_window.h"

#include "app/start_up.h"
#include "bench/measure.h"
#include "platform/printing.h"
#include "platform/utf8_locale.h"
#include "ui/alert.h"
#include "ui/file_panels.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDropEvent>
#include <QEventLoop>
#include <QMessageBox>
#include <QMimeData>

namespace tessaly::bench {

using namespace Qt::StringLiterals;

namespace {

// Ends a wait when an alert appears.
class AlertWait : public QObject
{
public:
    QMessageBox *next()
    {
        QCoreApplication::instance()->installEventFilter(this);
        m_loop.exec();
        return m_alert;
    }

    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() != QEvent::Show) return false;
        if (auto *alert = qobject_cast<QMessageBox *>(object)) {
            m_alert = alert;
            m_loop.quit();
        }
        return false;
    }

private:
    QEventLoop m_loop;
    QMessageBox *m_alert = nullptr;
};

} // namespace

int runWithApplication(int argc, char *argv[], const std::function<int()> &work)
{
    useUtf8Locale();
    const std::unique_ptr<QApplication> application = startApplication(argc, argv);
    setPrintTarget(PrintTarget::nowhere); // standard output is for the table
    QTimer::singleShot(0, [&work] { QCoreApplication::exit(work()); });
    return QApplication::exec();
}

LiveWindow::LiveWindow()
{
    m_delegate.connectTo(&m_window);
    m_delegate.applicationDidFinishLaunching(&m_window);
    m_window.show();
}

LiveWindow::~LiveWindow()
{
    m_delegate.applicationWillTerminate(&m_window);
}

void LiveWindow::drop(const QString &path)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    QWidget *target = m_delegate.posterView.get();
    QDragEnterEvent enter(target->rect().center(), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(target, &enter);
    QDropEvent drop(target->rect().center(), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(target, &drop);
    require(m_delegate.saveBTN->isEnabled(), "the video was not opened");
}

void LiveWindow::saveHalf(const QString &outputPath)
{
    m_delegate.sizeSLDR->setDoubleValue(50);
    m_delegate.sizeSLDRChanged(m_delegate.sizeSLDR.get());
    m_delegate.saveResponse(panelResponseOK, outputPath);
    const QMessageBox *report = AlertWait().next();
    require(report->text() == "Video Resized Successfully!"_L1, "the resize failed");
}

void LiveWindow::answerReport()
{
    m_window.findChild<QAbstractButton *>(u"alertButton%1"_s.arg(firstAlertResponse))->click();
    QCoreApplication::processEvents();
}

Pulse::Pulse()
{
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
        m_gaps.push_back(static_cast<double>(m_sinceTick.nsecsElapsed()) / 1e6);
        m_sinceTick.start();
    });
    m_sinceTick.start();
    m_timer.start(5);
}

int gapRows(const std::string &during, const std::vector<double> &gaps)
{
    return valueRow("event loop's gaps, " + during + ": 99th percentile", percentile(gaps, 99), 50, "ms") +
           valueRow("event loop's gaps, " + during + ": worst", percentile(gaps, 100), 150, "ms");
}

} // namespace tessaly::bench
