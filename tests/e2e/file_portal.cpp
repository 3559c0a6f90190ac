// The file panels of a desktop's portal, as far as a program can see them: file_portal ANSWER… A panel that
// is asked for says on standard output what it is to show, and is answered by the next answer: a path, or
// "cancel". Says "ready" when it can be asked.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QTextStream>
#include <QTimer>
#include <QUrl>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace {

void say(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

} // namespace

class FilePortal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileChooser")
    Q_PROPERTY(uint version READ version CONSTANT)

public:
    explicit FilePortal(QStringList answers) : m_answers(std::move(answers))
    {
        connect(&m_again, &QTimer::timeout, this, [this] { QDBusConnection::sessionBus().send(m_response); });
    }
    static uint version() { return 3; }

public Q_SLOTS:
    QDBusObjectPath OpenFile(const QString &, const QString &title, const QVariantMap &,
                             const QDBusMessage &message)
    {
        say(u"open, %1"_s.arg(title));
        return answer(message);
    }
    QDBusObjectPath SaveFile(const QString &, const QString &title, const QVariantMap &options,
                             const QDBusMessage &message)
    {
        const QString folder =
            QString::fromUtf8(options.value(u"current_folder"_s).toByteArray().constData());
        say(u"save, %1, %2 in %3"_s.arg(title, options.value(u"current_name"_s).toString(), folder));
        return answer(message);
    }

private:
    // Who asked listens on the path that this call returns, once it has taken note of that; told again and
    // again, it hears of the answer some time, and once it has, it listens no more.
    QDBusObjectPath answer(const QDBusMessage &asked)
    {
        const QString path = u"/org/freedesktop/portal/desktop/request/%1"_s.arg(++m_requests);
        QVariantMap results;
        uint cancelled = 1;
        if (const QString file = m_answers.value(m_requests - 1); file.startsWith(u'/')) {
            results.insert(u"uris"_s, QStringList{QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded)});
            cancelled = 0;
        }
        m_response = QDBusMessage::createTargetedSignal(asked.service(), path,
                                                        u"org.freedesktop.portal.Request"_s, u"Response"_s);
        m_response << cancelled << results;
        m_again.start(500);
        return QDBusObjectPath(path);
    }

    QStringList m_answers;
    int m_requests = 0;
    QDBusMessage m_response;
    QTimer m_again;
};

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    FilePortal portal(QCoreApplication::arguments().mid(1));
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerObject(u"/org/freedesktop/portal/desktop"_s, &portal,
                            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties) ||
        !bus.registerService(u"org.freedesktop.portal.Desktop"_s))
        return 1;
    say(u"ready"_s);
    return QCoreApplication::exec();
}

#include "file_portal.moc"
