#include "ui/desktop_services.h"

#include "platform/paths.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

// The desktop itself does not say so: opening something that is gone counts as opened.
bool isThere(const QString &path, const DesktopFailure &onFailure)
{
    if (QFileInfo::exists(path)) return true;
    onFailure(u"“%1” is no longer there. It was moved or deleted."_s.arg(lastPathComponent(path)));
    return false;
}

void openFolderOf(const QString &path, const DesktopFailure &onFailure)
{
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDesktopServices::openUrl(fileURL(folder)))
        onFailure(u"The folder “%1” could not be opened."_s.arg(folder));
}

QDBusMessage showItems(const QString &path)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                       u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    const QString startupId; // none
    call << QStringList{absoluteString(fileURL(path))} << startupId;
    return call;
}

} // namespace

void revealInFileManager(const QString &path, DesktopFailure onFailure, const QDBusConnection &bus,
                         std::chrono::milliseconds timeLimit)
{
    if (!isThere(path, onFailure)) return;
    if (!bus.isConnected()) { // a call on it would never finish
        openFolderOf(path, onFailure);
        return;
    }
    const QDBusPendingCall call = bus.asyncCall(showItems(path), static_cast<int>(timeLimit.count()));
    auto *watcher = new QDBusPendingCallWatcher(call, QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [watcher, path, onFailure = std::move(onFailure)] {
                         if (watcher->isError()) openFolderOf(path, onFailure);
                         watcher->deleteLater();
                     });
}

void playInVideoPlayer(const QString &path, const DesktopFailure &onFailure)
{
    if (!isThere(path, onFailure)) return;
    if (!QDesktopServices::openUrl(fileURL(path)))
        onFailure(u"No program was found that can open “%1”."_s.arg(lastPathComponent(path)));
}

} // namespace tessaly
