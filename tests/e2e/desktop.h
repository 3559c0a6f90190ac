// A desktop of a test's own: a display without a window manager, a session bus, the accessibility bus, and a
// home folder.
#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <optional>

namespace tessaly::e2e {

// Everything that was started on it ends with it, programs of the test included, and its folders go.
class Desktop
{
public:
    Desktop();
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

    // Writes a picture of the screen where ImageMagick is there to make one.
    void savePicture(const QString &path) const;

private:
    void makeFolders();
    void startDisplay();
    void startBuses();

    QTemporaryDir m_root;
    QProcessEnvironment m_environment;
    QProcess m_display;
    QProcess m_sessionBus;
    std::optional<QDBusConnection> m_accessibilityBus;
    QString m_problem;
};

} // namespace tessaly::e2e
