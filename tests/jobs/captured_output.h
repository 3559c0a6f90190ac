// What the program writes to its standard output while an object of this class lives.
#pragma once

#include <QFile>
#include <QTemporaryFile>

#include <cstdio>
#include <unistd.h>

namespace tessaly::test {

class CapturedOutput
{
public:
    CapturedOutput()
    {
        std::fflush(stdout);
        m_opened = m_file.open();
        m_before = dup(STDOUT_FILENO);
        dup2(m_file.handle(), STDOUT_FILENO);
    }
    ~CapturedOutput() { finish(); }
    CapturedOutput(const CapturedOutput &) = delete;
    CapturedOutput &operator=(const CapturedOutput &) = delete;

    // Ends the capture and gives the text.
    QByteArray finish()
    {
        if (m_before >= 0) {
            std::fflush(stdout);
            dup2(m_before, STDOUT_FILENO);
            close(m_before);
            m_before = -1;
        }
        if (!m_opened) return "no temporary file";
        QFile file(m_file.fileName());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

private:
    QTemporaryFile m_file;
    bool m_opened = false;
    int m_before = -1;
};

} // namespace tessaly::test
