// What the end-to-end tests have in common: every test function gets a fresh desktop, and everything that it
// started ends with it. When a test fails, what was on screen and what the programs printed is told, and a
// picture of the screen lies in the working folder.
#pragma once

#include "e2e/desktop.h"
#include "e2e/program.h"
#include "support/test_case.h"

#include <memory>
#include <vector>

namespace tessaly::e2e {

class EndToEndCase : public test::TestCase
{
    Q_OBJECT

protected:
    Desktop &desktop();
    // For the desktop of this test function, before its first use; else nobody manages the windows.
    void letManageWindows(WindowManager manager) { m_manager = manager; }

    // Starts a program of the build folder.
    Program &start(const QString &name, const ProgramOptions &options = {});
    // Starts Tessaly and waits for its window. Failures show in the steps that follow.
    Program &launch(const ProgramOptions &options = {});

    // Path of a file in the test's own folder; that of a clip that all tests share and none may change; that
    // of a copy of a clip in the test's own folder.
    QString file(const QString &name);
    static QString clip(const QString &name);
    QString copyOfClip(const QString &clipName, const QString &name);

    // The poster frames of all running copies.
    QStringList posterFrames();
    // Everything that programs have left in the folder for temporary files.
    QStringList temporaryFiles();

private Q_SLOTS:
    void cleanup();

private:
    WindowManager m_manager = WindowManager::none;
    std::unique_ptr<Desktop> m_desktop;
    std::vector<std::unique_ptr<Program>> m_programs; // newest last
};

} // namespace tessaly::e2e
