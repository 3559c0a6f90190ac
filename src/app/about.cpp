// What this program is, and which tools it has found.
#include "app/app_delegate.h"
#include "platform/bundle.h"
#include "platform/child_process.h"
#include "platform/confinement.h"

#include <QFileInfo>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds versionTimeLimit(5);
constexpr qint64 longestAnswer = 64LL * 1024; // bytes

// "ffmpeg version 5.1.6-0+deb12u1 Copyright (c) ..." holds it as its third word.
QString versionOf(const QString &tool)
{
    const CapturedRun run =
        runCapturingOutput(tool, {u"-version"_s}, {.time = versionTimeLimit, .outputBytes = longestAnswer});
    const QString version = QString::fromUtf8(run.output).section(u' ', 2, 2).trimmed();
    return run.outcome.succeeded() && !version.isEmpty() ? version : AppDelegate::tr("gives no version");
}

QString toolText(const QString &name, const QString &resource)
{
    const std::optional<QString> tool = pathForResource(resource);
    if (!tool) return AppDelegate::tr("%1: not found").arg(name);
    return u"%1 %2: %3"_s.arg(name, versionOf(*tool), QFileInfo(*tool).canonicalFilePath());
}

} // namespace

void AppDelegate::showAbout()
{
    if (isBusy()) return;
    const QStringList lines{tr("MIT License"), toolText(u"ffprobe"_s, u"sniffer"_s),
                            toolText(u"ffmpeg"_s, u"creator"_s),
                            tr("Confinement of the tools: %1").arg(confinementInForce())};
    if (runsAreEnding()) return;
    showAlert(u"Tessaly "_s + QStringLiteral(TESSALY_VERSION), lines.join(u'\n'));
}

} // namespace tessaly
