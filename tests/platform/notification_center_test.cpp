#include "platform/notification_center.h"
#include "support/test_case.h"

#include <QUrl>
#include <memory>

using namespace Qt::StringLiterals;

namespace tessaly::test {

using Notification = NotificationCenter::Notification;

class NotificationCenterTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void carriesNameSenderAndUserInfo()
    {
        NotificationCenter center;
        QObject context;
        QObject sender;
        const QUrl url = QUrl::fromLocalFile(u"/a b/clip.mp4"_s);
        QList<Notification> seen;
        center.addObserver(&context, u"FileAdded"_s, [&](const Notification &n) { seen += n; });
        center.postNotification(u"FileAdded"_s, &sender, {{u"key"_s, url}});
        center.postNotification(u"FileAdded"_s, nullptr, {});
        QCOMPARE(seen.size(), 2); // before each post returned
        QCOMPARE(seen[0].name, u"FileAdded"_s);
        QCOMPARE(seen[0].object, &sender);
        QCOMPARE(seen[0].userInfo.value(u"key"_s).toUrl(), url);
        QCOMPARE(seen[1].object, nullptr);
        QVERIFY(seen[1].userInfo.isEmpty());
    }

    void onlyObserversOfThatNameInTheirOrder()
    {
        NotificationCenter center;
        QObject context;
        QString called;
        center.addObserver(&context, u"A"_s, [&](const Notification &) { called += u'1'; });
        center.addObserver(&context, u"B"_s, [&](const Notification &) { called += u'2'; });
        center.addObserver(&context, u"A"_s, [&](const Notification &) { called += u'3'; });
        center.postNotification(u"A"_s, nullptr, {});
        QCOMPARE(called, u"13"_s);
        center.postNotification(u"a"_s, nullptr, {});
        QCOMPARE(called, u"13"_s);
    }

    void anObserverDiesWithItsContext()
    {
        NotificationCenter center;
        int called = 0;
        {
            QObject context;
            center.addObserver(&context, u"A"_s, [&](const Notification &) { ++called; });
        }
        center.postNotification(u"A"_s, nullptr, {});
        QCOMPARE(called, 0);
    }

    void aContextThatDiesDuringAPostIsNotCalled()
    {
        NotificationCenter center;
        QObject first;
        auto second = std::make_unique<QObject>();
        QString called;
        center.addObserver(&first, u"A"_s, [&](const Notification &) {
            called += u'1';
            second.reset();
        });
        center.addObserver(second.get(), u"A"_s, [&](const Notification &) { called += u'2'; });
        center.postNotification(u"A"_s, nullptr, {});
        QCOMPARE(called, u"1"_s);
    }

    void anObserverMayEndItsOwnContext()
    {
        NotificationCenter center;
        auto context = std::make_unique<QObject>();
        auto held = std::make_shared<QString>(u"alive"_s);
        QString seen;
        // The captured text must outlive the removal that the nested post does.
        center.addObserver(context.get(), u"A"_s, [&, held](const Notification &) {
            context.reset();
            center.postNotification(u"B"_s, nullptr, {});
            seen = *held;
        });
        center.postNotification(u"A"_s, nullptr, {});
        QCOMPARE(seen, u"alive"_s);
        center.postNotification(u"A"_s, nullptr, {});
        QCOMPARE(held.use_count(), 1);
    }

    void anObserverAddedDuringAPostWaitsForTheNext()
    {
        NotificationCenter center;
        QObject context;
        QString called;
        center.addObserver(&context, u"A"_s, [&](const Notification &) {
            called += u'1';
            for (int i = 0; i < 100 && called.size() == 1; ++i)
                center.addObserver(&context, u"A"_s, [&](const Notification &) { called += u'2'; });
        });
        center.postNotification(u"A"_s, nullptr, {});
        QCOMPARE(called, u"1"_s);
        center.postNotification(u"A"_s, nullptr, {});
        QCOMPARE(called, u"11"_s + QString(100, u'2'));
    }

    void thereIsOneDefaultCenter()
    {
        QObject context;
        int called = 0;
        NotificationCenter::defaultCenter().addObserver(&context, u"A"_s,
                                                        [&](const Notification &) { ++called; });
        NotificationCenter::defaultCenter().postNotification(u"A"_s, nullptr, {});
        QCOMPARE(called, 1);
    }
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::NotificationCenterTest)
#include "notification_center_test.moc"
