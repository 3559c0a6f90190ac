#include "support/test_case.h"
#include "ui/launcher_progress.h"
#include "ui/private_bus.h"

#include <QApplication>
#include <QDBusMessage>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace tessaly;

class LauncherProgressTest : public tessaly::test::TestCase
{
    Q_OBJECT

public Q_SLOTS:
    void record(const QString &application, const QVariantMap &properties)
    {
        m_applications += application;
        m_told += properties.value(u"progress-visible"_s).toBool()
                      ? QString::number(properties.value(u"progress"_s).toDouble())
                      : u"hidden"_s;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_bus.start());
        m_ours = m_bus.connection(u"ours"_s);
        m_theirs = m_bus.connection(u"theirs"_s);
        QVERIFY(m_ours.isConnected());
        QVERIFY(m_theirs.connect(QString(), QString(), u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s,
                                 this, SLOT(record(QString, QVariantMap))));
    }
    void init()
    {
        TestCase::init();
        m_applications.clear();
        m_told.clear();
    }

    void tellsWholePercent_data()
    {
        QTest::addColumn<QList<double>>("percents");
        QTest::addColumn<QStringList>("told");
        QTest::newRow("one") << QList<double>{42} << QStringList{u"0.42"_s};
        QTest::newRow("from the start") << QList<double>{0, 0.5} << QStringList{u"0"_s};
        QTest::newRow("calm") << QList<double>{42, 42.3, 42.99, 43} << QStringList{u"0.42"_s, u"0.43"_s};
        QTest::newRow("within the bar") << QList<double>{-3, 250} << QStringList{u"0"_s, u"1"_s};
        QTest::newRow("no progress") << QList<double>{42, INFINITY, NAN}
                                     << QStringList{u"0.42"_s, u"hidden"_s};
        QTest::newRow("never any progress") << QList<double>{NAN} << QStringList();
    }
    void tellsWholePercent()
    {
        QFETCH(QList<double>, percents);
        QFETCH(QStringList, told);
        {
            LauncherProgress progress(m_ours);
            for (const double percent : percents)
                progress.show(percent);
        }
        if (!told.isEmpty() && told.last() != "hidden"_L1) told += u"hidden"_s;
        tellEnd();
        told += {u"0.01"_s, u"hidden"_s};
        QTRY_COMPARE(m_told, told);
        for (const QString &application : m_applications)
            QCOMPARE(application, u"application://tessaly.desktop"_s);
    }

    void isSilentWithoutBus()
    {
        LauncherProgress(QDBusConnection(u"unconnected"_s)).show(42);
        tellEnd();
        QTRY_COMPARE(m_told, (QStringList{u"0.01"_s, u"hidden"_s}));
    }

private:
    // What comes after everything that was told.
    void tellEnd() { LauncherProgress(m_ours).show(1); }

    test::PrivateBus m_bus;
    QDBusConnection m_ours{u"unconnected"_s};
    QDBusConnection m_theirs{u"unconnected"_s};
    QStringList m_applications;
    QStringList m_told;
};

TESSALY_GUI_TEST_MAIN(LauncherProgressTest)
#include "launcher_progress_test.moc"
