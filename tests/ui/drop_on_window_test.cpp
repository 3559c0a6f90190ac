// Whatever part of the window a file is dropped on, it goes the way of the poster.
#include "platform/notification_center.h"
#include "platform/paths.h"
#include "support/seen.h"
#include "support/test_case.h"
#include "ui/drag.h"
#include "ui/image_drop_view.h"
#include "ui/main_window.h"

#include <QLineEdit>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QToolBar>

using namespace Qt::StringLiterals;
using namespace tessaly;
using tessaly::test::copied;
using tessaly::test::Drag;
using tessaly::test::refused;

class DropOnWindowTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void goesTheWayOfThePoster_data();
    void goesTheWayOfThePoster();
    void obeysThePostersGuard();

private:
    QWidget *place(const QString &name) const;
    bool makeFile() const;

    QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath(u"clip.mp4"_s);
    MainWindow m_window;
};

QWidget *DropOnWindowTest::place(const QString &name) const
{
    return name == m_window.objectName() ? const_cast<MainWindow *>(&m_window)
                                         : m_window.findChild<QWidget *>(name);
}

bool DropOnWindowTest::makeFile() const
{
    QFile file(m_path);
    return file.open(QIODevice::WriteOnly);
}

void DropOnWindowTest::goesTheWayOfThePoster_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<Qt::DropActions>("offered");
    QTest::addColumn<bool>("welcome");
    const struct
    {
        const char *name;
        Qt::DropActions actions;
        bool welcome;
    } offers[] = {{"copy", Qt::CopyAction, true},
                  {"copy and move", Qt::CopyAction | Qt::MoveAction, true},
                  {"everything", Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, true},
                  {"move", Qt::MoveAction, false},
                  {"link", Qt::LinkAction, false}};
    for (const char *name : {"window", "posterView", "dropHintLBL", "inputLBL", "sliderTitleLBL", "sizeSLDR",
                             "widthTF", "heightTF", "proportionalCBX", "sizeGroup", "posterPositionSlider",
                             "toolBar", "menuBar", "statusBar"}) {
        for (const bool enabled : {true, false}) {
            for (const auto &offer : offers)
                QTest::addRow("%s%s, offered: %s", name, enabled ? "" : " disabled", offer.name)
                    << QString::fromLatin1(name) << enabled << offer.actions << offer.welcome;
        }
    }
}

void DropOnWindowTest::goesTheWayOfThePoster()
{
    QFETCH(QString, name);
    QFETCH(bool, enabled);
    QFETCH(Qt::DropActions, offered);
    QFETCH(bool, welcome);
    QVERIFY(makeFile());
    QWidget *target = place(name);
    QVERIFY(target);
    if (!target->isWindow()) target->setEnabled(enabled);
    const auto *field = qobject_cast<QLineEdit *>(target);
    const QString before = field ? field->text() : QString();
    QObject observer;
    QList<QUrl> posted;
    NotificationCenter::defaultCenter().addObserver(
        &observer, u"FileAddedByDragAnadDrop"_s,
        [&](const auto &notification) { posted += notification.userInfo.value(u"key"_s).toUrl(); });

    QMimeData data; // a file manager sends the path as text, too, which a field would take
    data.setUrls({fileURL(m_path)});
    data.setText(m_path);
    Drag drag(*target, data, offered);
    for (const test::Answer &answer : {drag.enter(), drag.move(), drag.drop()}) {
        if (answer.accepted && answer.action == Qt::MoveAction) QFile::remove(m_path);
        QCOMPARE(answer, welcome ? copied : refused);
    }
    target->setEnabled(true);
    QVERIFY(QFile::exists(m_path));
    QCOMPARE(posted, welcome ? QList<QUrl>{fileURL(m_path)} : QList<QUrl>());
    if (field) QCOMPARE(field->text(), before);
}

void DropOnWindowTest::obeysThePostersGuard()
{
    QVERIFY(makeFile());
    auto *poster = m_window.findChild<ImageDropView *>();
    poster->setDropGuard([] { return false; });
    const test::RawDrag data(absoluteString(fileURL(m_path)).toLatin1());
    Drag drag(m_window, data);
    QCOMPARE(drag.enter(), refused);
    poster->setDropGuard({});
    QCOMPARE(drag.enter(), copied);
}

TESSALY_GUI_TEST_MAIN(DropOnWindowTest)
#include "drop_on_window_test.moc"
