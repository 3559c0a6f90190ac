// The real window with its controller, in this process and on the real tools, worked by code.
#pragma once

#include "app/app_delegate.h"

#include <QElapsedTimer>
#include <QTimer>

#include <functional>
#include <vector>

namespace tessaly::bench {

// Runs the work inside the application's event loop; the answer is what the work answers.
int runWithApplication(int argc, char *argv[], const std::function<int()> &work);

class LiveWindow
{
public:
    // Launched and shown, as at the program's start.
    LiveWindow();
    ~LiveWindow();

    // Opens a video as a drop does; back when the controls are enabled.
    void drop(const QString &path);

    // Saves the open video in half its size; back when the report is up.
    void saveHalf(const QString &outputPath);
    // Takes the report away.
    void answerReport();

private:
    MainWindow m_window;
    AppDelegate m_delegate;
};

// As long as it lives a timer of 5 ms ticks in the event loop: whatever keeps a tick waiting would keep a
// repaint waiting, too.
class Pulse
{
public:
    Pulse();

    const std::vector<double> &gaps() const { return m_gaps; } // milliseconds between two ticks

private:
    QTimer m_timer;
    QElapsedTimer m_sinceTick;
    std::vector<double> m_gaps;
};

// The two rows about these gaps; the number of broken bounds.
int gapRows(const std::string &during, const std::vector<double> &gaps);

} // namespace tessaly::bench
