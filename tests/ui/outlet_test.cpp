#include "support/test_case.h"
#include "ui/outlet.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QProcess>
#include <QSlider>

using namespace Qt::StringLiterals;

namespace tessaly {

namespace {

// With this argument the program uses an outlet that is not connected, in the way that the next one names.
const QString useUnconnected = u"--use-unconnected"_s;

void useOutletWrongly(const QString &way)
{
    Outlet<QLineEdit> widthTF("widthTF");
    if (way == u"destroyed"_s) {
        QLineEdit field;
        widthTF.connectTo(&field);
    }
    if (way == u"reference"_s)
        (*widthTF).clear();
    else
        widthTF->clear();
}

} // namespace

class OutletTest : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void reachesItsControl();
    void connectsByNameAndType();
    void connectsToTheRoot();
    void connectsToAnAction();
    void forgetsADestroyedControl();
    void endsTheProgramWhenNotConnected_data();
    void endsTheProgramWhenNotConnected();
};

void OutletTest::reachesItsControl()
{
    QSlider slider;
    Outlet<QSlider> sizeSLDR("sizeSLDR");
    QVERIFY(!sizeSLDR.isConnected());
    sizeSLDR.connectTo(&slider);
    QVERIFY(sizeSLDR.isConnected());
    QCOMPARE(sizeSLDR.name(), u"sizeSLDR"_s);
    sizeSLDR->setValue(7);
    QCOMPARE(slider.value(), 7);
    QCOMPARE(&*sizeSLDR, &slider);
    QCOMPARE(sizeSLDR.get(), &slider);
}

void OutletTest::connectsByNameAndType()
{
    QWidget root;
    QWidget group(&root);
    QLineEdit other(&group);
    other.setObjectName(u"heightTF"_s);
    QLineEdit field(&group);
    field.setObjectName(u"widthTF"_s);
    Outlet<QLineEdit> widthTF("widthTF");
    QVERIFY(widthTF.connectFrom(&root));
    QCOMPARE(widthTF.get(), &field);

    Outlet<QSlider> wrongType("widthTF");
    QVERIFY(!wrongType.connectFrom(&root));
    Outlet<QLineEdit> wrongName("widthtf");
    QVERIFY(!wrongName.connectFrom(&root));
    // A form without the control takes the connection away.
    QWidget empty;
    QVERIFY(!widthTF.connectFrom(&empty));
    QVERIFY(!widthTF.isConnected());
}

void OutletTest::connectsToTheRoot()
{
    QWidget root;
    root.setObjectName(u"window"_s);
    Outlet<QWidget> window("window");
    QVERIFY(window.connectFrom(&root));
    QCOMPARE(window.get(), &root);
    Outlet<QLineEdit> wrongType("window");
    QVERIFY(!wrongType.connectFrom(&root));
}

void OutletTest::connectsToAnAction()
{
    QWidget root;
    QAction action(&root);
    action.setObjectName(u"saveBTN"_s);
    Outlet<QAction> saveBTN("saveBTN");
    QVERIFY(saveBTN.connectFrom(&root));
    saveBTN->setEnabled(false);
    QVERIFY(!action.isEnabled());
}

void OutletTest::forgetsADestroyedControl()
{
    Outlet<QLineEdit> widthTF("widthTF");
    {
        QLineEdit field;
        widthTF.connectTo(&field);
    }
    QVERIFY(!widthTF.isConnected());
}

void OutletTest::endsTheProgramWhenNotConnected_data()
{
    QTest::addColumn<QString>("way");
    QTest::newRow("through the arrow") << u"arrow"_s;
    QTest::newRow("through the star") << u"reference"_s;
    QTest::newRow("after the control was destroyed") << u"destroyed"_s;
}

void OutletTest::endsTheProgramWhenNotConnected()
{
    QFETCH(const QString, way);
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {useUnconnected, way});
    QVERIFY(child.waitForFinished(test::waitLimit));
    QCOMPARE(child.exitStatus(), QProcess::CrashExit);
    const QByteArray said = child.readAllStandardError();
    QVERIFY2(said.contains("The outlet \"widthTF\" is not connected"), said.constData());
}

} // namespace tessaly

int main(int argc, char *argv[])
{
    tessaly::test::prepareProcess();
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == tessaly::useUnconnected) {
        tessaly::useOutletWrongly(arguments.value(2));
        return 0;
    }
    tessaly::OutletTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "outlet_test.moc"
