// The known state that every test starts from. A test class derives from TestCase and ends its source with
// TESSALY_TEST_MAIN(Class) or, when it needs widgets, TESSALY_GUI_TEST_MAIN(Class).
//
// The state: no display (offscreen platform), no desktop services (both message buses lead nowhere), a fixed
// hash seed, settings and caches in test folders of their own, and every warning that Qt prints without being
// announced by QTest::ignoreMessage fails the test function (but for those about what the platform without a
// display cannot do).
#pragma once

#include <QObject>
#include <QTest>

namespace tessaly::test {

// Milliseconds that anything may take that a test waits for. It comes at once; this is for a machine with
// other work.
inline constexpr int waitLimit = 60'000;

class TestCase : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void init(); // a class with an init() of its own calls this one
};

// To be called before the application object is made.
void prepareProcess();

} // namespace tessaly::test

// Qt's own limit of five seconds is too short for a busy machine.
#undef QTRY_VERIFY
#undef QTRY_VERIFY2
#undef QTRY_COMPARE
#define QTRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT((condition), tessaly::test::waitLimit)
#define QTRY_VERIFY2(condition, text) QTRY_VERIFY2_WITH_TIMEOUT((condition), text, tessaly::test::waitLimit)
#define QTRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT((actual), expected, tessaly::test::waitLimit)

#define TESSALY_TEST_RUN(Application, Class)                                                                 \
    int main(int argc, char *argv[])                                                                         \
    {                                                                                                        \
        tessaly::test::prepareProcess();                                                                     \
        Application application(argc, argv);                                                                 \
        Class test;                                                                                          \
        return QTest::qExec(&test, argc, argv);                                                              \
    }

#define TESSALY_TEST_MAIN(Class) TESSALY_TEST_RUN(QCoreApplication, Class)
#define TESSALY_GUI_TEST_MAIN(Class) TESSALY_TEST_RUN(QApplication, Class)
