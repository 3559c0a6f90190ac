#include "platform/printing.h"
#include "support/output_capture.h"
#include "support/test_case.h"

#include <functional>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;
using namespace tessaly;
using tessaly::test::writtenTo;

class PrintingTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void printsToTheTarget_data();
    void printsToTheTarget();
    void printsUTF8_data();
    void printsUTF8();
    void linesOfThreadsAreNotMixed();
};

void PrintingTest::cleanup()
{
    setPrintTarget(PrintTarget::standardOutput);
}

void PrintingTest::printsToTheTarget_data()
{
    QTest::addColumn<PrintTarget>("target");
    QTest::addColumn<QByteArray>("onOutput");
    QTest::addColumn<QByteArray>("onError");
    QTest::newRow("output") << PrintTarget::standardOutput << QByteArray("a line\n") << QByteArray();
    QTest::newRow("error") << PrintTarget::standardError << QByteArray() << QByteArray("a line\n");
    QTest::newRow("nowhere") << PrintTarget::nowhere << QByteArray() << QByteArray();
}

void PrintingTest::printsToTheTarget()
{
    QFETCH(PrintTarget, target);
    QFETCH(QByteArray, onOutput);
    QFETCH(QByteArray, onError);
    setPrintTarget(target);
    QByteArray error;
    const QByteArray output =
        writtenTo(STDOUT_FILENO, [&error] { error = writtenTo(STDERR_FILENO, [] { print(u"a line"_s); }); });
    QCOMPARE(output, onOutput);
    QCOMPARE(error, onError);
}

void PrintingTest::printsUTF8_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty line") << QString() << QByteArray("\n");
    QTest::newRow("other scripts") << u"é漢😀"_s << QByteArray("é漢😀\n");
    QTest::newRow("percent sign is no format") << u"100%s %n"_s << QByteArray("100%s %n\n");
    QTest::newRow("NUL inside") << u"a\0b"_s << QByteArray("a\0b\n", 4);
}

void PrintingTest::printsUTF8()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QCOMPARE(writtenTo(STDOUT_FILENO, [text] { print(text); }), bytes);
}

void PrintingTest::linesOfThreadsAreNotMixed()
{
    constexpr int threadCount = 4;
    constexpr int linesPerThread = 200;
    const QByteArray output = writtenTo(STDOUT_FILENO, [] {
        std::vector<std::thread> threads;
        for (int n = 0; n < threadCount; ++n) {
            threads.emplace_back([n] {
                const QString line(5000, QChar(u'a' + n));
                for (int i = 0; i < linesPerThread; ++i)
                    print(line);
            });
        }
        for (std::thread &thread : threads)
            thread.join();
    });
    QList<QByteArray> lines = output.split('\n');
    QCOMPARE(lines.takeLast(), QByteArray());
    QCOMPARE(lines.size(), threadCount * linesPerThread);
    for (const QByteArray &line : lines)
        QCOMPARE(line, QByteArray(5000, line.front()));
}

TESSALY_TEST_MAIN(PrintingTest)
#include "printing_test.moc"
