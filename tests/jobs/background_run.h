// A converter run on a pool thread, as the window has it, watched from the thread of the test.
#pragma once

#include "jobs/converter_run.h"

#include <QThreadPool>

#include <future>
#include <mutex>

namespace tessaly::test {

class BackgroundRun
{
public:
    explicit BackgroundRun(const QStringList &arguments = {})
    {
        QThreadPool::globalInstance()->start([this, arguments] {
            m_outcome.set_value(run.run(arguments, [this](const QByteArray &chunk) {
                const std::lock_guard lock(m_guard);
                m_chunks += chunk;
            }));
        });
    }
    // A test that failed in the middle must not hang.
    ~BackgroundRun()
    {
        run.requestStop(std::chrono::milliseconds(0));
        m_future.wait();
    }
    BackgroundRun(const BackgroundRun &) = delete;
    BackgroundRun &operator=(const BackgroundRun &) = delete;

    bool isOver() const { return m_future.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }
    RunOutcome outcome() const { return m_future.get(); } // waits
    QByteArrayList chunks()
    {
        const std::lock_guard lock(m_guard);
        return m_chunks;
    }

    ConverterRun run;

private:
    std::mutex m_guard;
    QByteArrayList m_chunks;
    std::promise<RunOutcome> m_outcome;
    std::shared_future<RunOutcome> m_future = m_outcome.get_future().share();
};

} // namespace tessaly::test
