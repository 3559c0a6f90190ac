// A program under test: started on a desktop, worked by mouse and keyboard, read through the accessibility
// bus.
#pragma once

#include "e2e/control.h"

#include <QProcess>

#include <functional>

namespace tessaly::e2e {

class Desktop;

struct ProgramOptions
{
    QStringList arguments = {};
    QProcessEnvironment environment = {};   // on top of the desktop's
    std::function<void()> beforeStart = {}; // runs in the new process; only what may follow a fork
};

// A click or a key first waits until there is something to take it; false when that does
// not come. Killed at the end unless it has ended.
class Program
{
public:
    Program(Desktop &desktop, const QString &file, const ProgramOptions &options = {});
    ~Program();

    qint64 id() const { return m_process.processId(); }
    bool hasEnded() const { return m_process.state() == QProcess::NotRunning; }
    // Of the ended program; -1 when a signal has ended it.
    int exitStatus() const;
    void send(int signal) const;
    QString standardOutput();
    QString standardError();

    std::optional<Control> find(Role role, const QString &name = {}) const;
    bool shows(Role role, const QString &name = {}) const { return find(role, name).has_value(); }
    bool isEnabled(Role role, const QString &name) const;
    QString fieldText(const QString &name) const;
    // The labels of the sheet of that role, in their order.
    QStringList labelsIn(Role sheet) const;
    // Everything on screen, and what it printed: for a failed test.
    QString describe();

    bool click(Role role, const QString &name);
    // Keys as xdotool calls them: "ctrl+o", "Return".
    bool press(QStringList keys);
    // Replaces what the focused field holds.
    bool typeOver(const QString &text);
    // The field has the keyboard focus.
    bool waitForFocus(Role role, const QString &name);

private:
    std::optional<Control> root() const;
    bool hasKeyboard() const;

    Desktop &m_desktop;
    QProcess m_process;
    QString m_output;
    QString m_error;
    mutable QString m_service; // its name on the accessibility bus
};

} // namespace tessaly::e2e
