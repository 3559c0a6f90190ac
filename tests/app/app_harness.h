// The real window with its controller, on tools that the test chooses, driven as a person does.
#pragma once

#include "app/app_delegate.h"
#include "support/fake_tools.h"

#include <QFileDialog>
#include <QTemporaryDir>

#include <functional>

namespace tessaly::test {

class AppHarness
{
public:
    // Launched, shown, and with both tools fake: the prober says nothing, the converter does nothing.
    explicit AppHarness(bool attentionCanBeTold = false);
    ~AppHarness();

    MainWindow window;
    AppDelegate delegate;
    FakeTools tools;
    QTemporaryDir folder; // for the test's files; its temporary workspace lies there, too

    // Makes an empty file and returns its path.
    QString makeFile(const QString &name);

    // Lets the prober report one moving picture of this size (and the duration, in seconds).
    void letProberReport(int width, int height, const QString &duration = QStringLiteral("12.0"));
    void letProberReport(const QByteArray &report);

    // Lets the converter make a still picture of one colour for every frame.
    void letConverterMakeStills();

    // A copy of one of the clips, among the test's files; its path.
    QString copyOfClip(const QString &clip, const QString &name);
    // From here on the real tools run; the starts of the converter are still noted.
    void useRealProber() { tools.useRealTool(QStringLiteral("sniffer")); }
    void useRealConverter();
    // The real prober opens the file, whose stills are not made; the real converter is ready.
    void openForReal(const QString &path);

    // Opens a file as a drop does; back when the window takes input again.
    void drop(const QString &path);
    // A file of this size, opened.
    void openSize(int width, int height);

    template<class T>
    T *find(const char *name) const
    {
        return window.findChild<T *>(QLatin1StringView(name));
    }

    // Does it as when the program runs: inside an event loop.
    static void inEventLoop(const std::function<void()> &work);

    // The open or save panel that is up, or null.
    QFileDialog *panel() const;
    // Types the path into the panel and accepts it; back when the panel is gone.
    void choose(const QString &path);
    // Save by its shortcut, to this path.
    void saveTo(const QString &path);

    // The alert that is up, or null.
    QWidget *alert() const;
    QString alertText() const;             // message text, line break, informative text
    QStringList alertButtons() const;      // titles in the order of their response codes
    void answerAlert(int response = 1000); // clicks; back when it is gone
    void answerAlertWithoutWaiting(int response);

    // The alert's text in one line, and the status line's behind it.
    QString told() const;

    // Replaces the field's text by typing; Return is another matter.
    void type(NumberField *field, const QString &text);

    static void sendDrop(QWidget *target, const QList<QUrl> &urls);
    static void sendDrop(QWidget *target, const QMimeData &data);
};

} // namespace tessaly::test
