// Work that waits for a person who looks at something else.
#include "support/test_case.h"
#include "ui/attention.h"

using namespace Qt::StringLiterals;
using namespace tessaly;

// The window and a window that plays another program; the platform without a display tells which is in front
// all the same.
class AttentionTest : public tessaly::test::TestCase
{
    Q_OBJECT

private:
    QWidget m_window;
    QWidget m_elsewhere;

    static void bring(QWidget &window)
    {
        window.show();
        window.activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), &window);
    }

private Q_SLOTS:
    void isThere_data()
    {
        QTest::addColumn<QString>("inFront");
        QTest::addColumn<bool>("canBeTold");
        QTest::addColumn<bool>("isThere");
        QTest::newRow("the window") << u"window"_s << true << true;
        QTest::newRow("a sheet of it") << u"sheet"_s << true << true;
        QTest::newRow("another program") << u"elsewhere"_s << true << false;
        QTest::newRow("another program, but nobody tells") << u"elsewhere"_s << false << true;
    }
    void isThere()
    {
        QFETCH(QString, inFront);
        QFETCH(bool, canBeTold);
        QWidget sheet(&m_window, Qt::Sheet);
        bring(m_window);
        if (inFront == "sheet"_L1) bring(sheet);
        if (inFront == "elsewhere"_L1) bring(m_elsewhere);
        QTEST(Attention(&m_window, canBeTold).isThere(), "isThere");
    }

    void workRunsAtOnceOrWaits_data()
    {
        QTest::addColumn<bool>("isThere");
        QTest::newRow("someone looks") << true;
        QTest::newRow("nobody looks") << false;
    }
    void workRunsAtOnceOrWaits()
    {
        QFETCH(bool, isThere);
        Attention attention(&m_window, true);
        bring(isThere ? m_window : m_elsewhere);
        int runs = 0;
        attention.whenThere(attention.isThere(), [&runs] { ++runs; });
        QCOMPARE(runs, isThere ? 1 : 0);
        QCOMPARE(attention.isAwaited(), !isThere);
        attention.bringToFront();
        QTRY_COMPARE(runs, 1);
        QVERIFY(!attention.isAwaited());
        bring(m_elsewhere);
        bring(m_window);
        QCoreApplication::processEvents();
        QCOMPARE(runs, 1);
    }

    void workWaitsWhileOtherProgramsTakeTurns()
    {
        Attention attention(&m_window, true);
        QWidget another;
        bring(m_elsewhere);
        int runs = 0;
        attention.whenThere(attention.isThere(), [&runs] { ++runs; });
        bring(another);
        bring(m_elsewhere);
        QCoreApplication::processEvents();
        QCOMPARE(runs, 0);
        bring(m_window);
        QTRY_COMPARE(runs, 1);
    }

    void aPermissionToComeToTheFrontIsPassedOn()
    {
        Attention(&m_window, true).bringToFront(u"token"_s);
        QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), "token"_ba);
        qunsetenv("XDG_ACTIVATION_TOKEN");
    }

    void nobodyTellsWithoutADisplay() { QVERIFY(!desktopTellsWhoIsInFront()); }
};

TESSALY_GUI_TEST_MAIN(AttentionTest)
#include "attention_test.moc"
