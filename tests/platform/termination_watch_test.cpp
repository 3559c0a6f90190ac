#include "platform/termination_watch.h"
#include "support/test_case.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <unistd.h>

using namespace tessaly;

namespace {

std::atomic<int> formerHandlerCalls = 0;

// Gives a signal a treatment for the time of a test.
class Treatment
{
public:
    Treatment(int signal, void (*handler)(int)) : m_signal(signal), m_before(std::signal(signal, handler)) {}
    ~Treatment() { std::signal(m_signal, m_before); }
    Treatment(const Treatment &) = delete;
    Treatment &operator=(const Treatment &) = delete;

private:
    int m_signal;
    void (*m_before)(int);
};

} // namespace

class TerminationWatchTest : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hearsEverySignal_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("terminate") << SIGTERM;
        QTest::newRow("interrupt") << SIGINT;
        QTest::newRow("hang up") << SIGHUP;
        QTest::newRow("quit") << SIGQUIT;
    }
    void hearsEverySignal()
    {
        QFETCH(int, signal);
        const Treatment former(signal, [](int) { ++formerHandlerCalls; });
        formerHandlerCalls = 0;
        std::atomic<int> calls = 0;
        {
            const TerminationWatch watch([&calls] { ++calls; });
            QVERIFY(!TerminationWatch::wasAsked());
            std::raise(signal);
            QVERIFY(TerminationWatch::wasAsked());
            QTRY_COMPARE(calls.load(), 1);
            std::raise(signal);
            QTRY_COMPARE(calls.load(), 2);
        }
        QCOMPARE(formerHandlerCalls.load(), 0);
        std::raise(signal);
        QCOMPARE(formerHandlerCalls.load(), 1);
        QCOMPARE(calls.load(), 2);
    }

    // As nohup asks for the hang-up, and a shell for the interrupt of what it runs in the background.
    void whatWasIgnoredStaysIgnored_data() { hearsEverySignal_data(); }
    void whatWasIgnoredStaysIgnored()
    {
        QFETCH(int, signal);
        const Treatment former(signal, SIG_IGN);
        const TerminationWatch watch([] {});
        std::raise(signal);
        QVERIFY(!TerminationWatch::wasAsked());
    }

    void writingFailsWhereNobodyReadsAnyMore()
    {
        const Treatment former(SIGPIPE, SIG_DFL);
        outliveReaders();
        std::array<int, 2> ends{};
        QCOMPARE(::pipe(ends.data()), 0);
        ::close(ends[0]);
        QCOMPARE(::write(ends[1], "x", 1), -1);
        QCOMPARE(errno, EPIPE);
        ::close(ends[1]);
    }
};

TESSALY_TEST_MAIN(TerminationWatchTest)
#include "termination_watch_test.moc"
