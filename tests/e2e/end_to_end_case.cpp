#include "e2e/end_to_end_case.h"

#include <QDirIterator>

namespace tessaly::e2e {

using namespace Qt::StringLiterals;

namespace {

QStringList filesBelow(const QString &folder, const QStringList &patterns)
{
    QStringList result;
    QDirIterator files(folder, patterns, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext())
        result << files.next();
    result.sort();
    return result;
}

} // namespace

Desktop &EndToEndCase::desktop()
{
    if (!m_desktop) {
        m_desktop = std::make_unique<Desktop>(m_manager);
        if (!m_desktop->problem().isEmpty()) qFatal("No desktop: %s", qUtf8Printable(m_desktop->problem()));
    }
    return *m_desktop;
}

Program &EndToEndCase::start(const QString &name, const ProgramOptions &options)
{
    const QString folder = QStringLiteral(TESSALY_PROGRAM_FOLDER);
    m_programs.push_back(std::make_unique<Program>(desktop(), folder + u'/' + name, options));
    return *m_programs.back();
}

Program &EndToEndCase::launch(const ProgramOptions &options)
{
    Program &tessaly = start(u"tessaly"_s, options);
    const auto isUp = [&tessaly] { return tessaly.shows(Role::frame) || tessaly.hasEnded(); };
    (void)QTest::qWaitFor(isUp, test::waitLimit);
    return tessaly;
}

QString EndToEndCase::file(const QString &name)
{
    return desktop().filesFolder() + u'/' + name;
}

QString EndToEndCase::clip(const QString &name)
{
    return QStringLiteral(TESSALY_MEDIA_FOLDER) + u'/' + name;
}

QString EndToEndCase::copyOfClip(const QString &clipName, const QString &name)
{
    QString path = file(name);
    if (!QFile::copy(clip(clipName), path)) qFatal("no copy of %s", qUtf8Printable(clipName));
    return path;
}

QStringList EndToEndCase::posterFrames()
{
    return filesBelow(desktop().temporaryFolder(), {u"out*.jpg"_s});
}

QStringList EndToEndCase::temporaryFiles()
{
    return filesBelow(desktop().temporaryFolder(), {});
}

void EndToEndCase::cleanup()
{
    if (m_desktop && QTest::currentTestFailed()) {
        for (const auto &program : m_programs)
            qInfo().noquote() << program->describe();
        const QString name = QString::fromUtf8(QTest::currentTestFunction());
        const QString row = QString::fromUtf8(QTest::currentDataTag());
        m_desktop->savePicture(row.isEmpty() ? name + u".png"_s : u"%1 - %2.png"_s.arg(name, row));
    }
    m_programs.clear();
    m_desktop.reset();
    m_manager = WindowManager::none;
}

} // namespace tessaly::e2e
