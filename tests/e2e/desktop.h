// A desktop of a test's own: a display and who manages its windows, a session bus, the accessibility bus, and
// a home folder.
#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRect>
#include <QTemporaryDir>

#include <optional>

namespace tessaly::e2e {

// Sway is a Wayland desktop that lies on the whole display: what the mouse and the keyboard do there, they do
// on it. It tiles windows, and floats dialogs.
enum class WindowManager { none, openbox, sway };

enum class Stacked { front, back };

struct ManagedWindow
{
    qint64 id = 0;
    qint64 process = 0;
    QString title;
    QRect place; // pixels on the screen
    bool hasKeyboard = false;
};

// Everything that was started on it ends with it, programs of the test included, and its folders go.
class Desktop
{
public:
    explicit Desktop(WindowManager manager = WindowManager::none);
    ~Desktop();

    // Why it is not usable; empty when it is.
    QString problem() const { return m_problem; }

    // For programs that are to run on it.
    QProcessEnvironment environment() const { return m_environment; }
    QDBusConnection accessibilityBus() const { return *m_accessibilityBus; }

    // Where its programs put temporary files. Nothing else is in there.
    QString temporaryFolder() const;
    // An empty folder for a test's files.
    QString filesFolder() const;

    // Mouse, keyboard and windows; the words are those of xdotool. Its standard output, or nothing when it
    // failed.
    std::optional<QString> xdotool(const QStringList &words) const;
    // The same of another tool that knows the desktop.
    std::optional<QString> ask(const QString &tool, const QStringList &words) const;
    // The windows on Sway, those in front last.
    QList<ManagedWindow> windowsOnSway() const;
    // Where on the screen the places begin that a process tells of. On Wayland it knows places in its windows
    // alone; that of its window in front is meant, or of the one behind its sheets.
    QPoint originOf(qint64 process, Stacked place = Stacked::front) const;
    // What is typed goes to a window of the process.
    bool hasKeyboard(qint64 process) const;

    // Writes a picture of the screen where ImageMagick is there to make one.
    void savePicture(const QString &path) const;

private:
    void makeFolders();
    void startDisplay();
    void startManager();
    void startSway();
    void startBuses();

    WindowManager m_manager;
    QTemporaryDir m_root;
    QProcessEnvironment m_environment;
    QProcess m_display;
    QProcess m_windowManager;
    QProcess m_sessionBus;
    std::optional<QDBusConnection> m_accessibilityBus;
    QString m_problem;
};

} // namespace tessaly::e2e
