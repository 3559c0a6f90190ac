#include "support/fake_tools.h"

#include "platform/bundle.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace tessaly::test {

namespace {

void require(bool done, const QString &what)
{
    if (!done) throw std::runtime_error(("the fake tools could not be set up: "_L1 + what).toStdString());
}

QByteArray readIfThere(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), path);
}

bool exists(qint64 process)
{
    const QByteArray facts = readIfThere(u"/proc/%1/stat"_s.arg(process));
    return !facts.isEmpty() && !facts.contains(") Z ");
}

QByteArray escaped(QString text)
{
    return text.replace(u'\\', "\\\\"_L1).replace(u'\n', "\\n"_L1).replace(u'\r', "\\r"_L1).toUtf8();
}

} // namespace

FakeTools::FakeTools()
{
    require(m_resources.isValid(), m_resources.path());
    for (const QString &tool : {u"sniffer"_s, u"creator"_s}) {
        useFake(tool);
        setSteps(tool, {});
    }
    setResourceFolders({folder()});
}

FakeTools::~FakeTools()
{
    setResourceFolders({});
}

QString FakeTools::folder() const
{
    return m_resources.path();
}

QString FakeTools::path(const QString &tool) const
{
    return m_resources.filePath(tool);
}

void FakeTools::setBehaviour(const QString &tool, const QString &name, const QStringList &parameters)
{
    setSteps(tool, {QStringList(name) + parameters});
}

void FakeTools::setSteps(const QString &tool, const QList<QStringList> &steps)
{
    useFake(tool);
    QByteArray text;
    for (const QStringList &step : steps) {
        text += step.first().toUtf8() + '\n';
        for (const QString &parameter : step.sliced(1))
            text += '\t' + escaped(parameter) + '\n';
    }
    writeFile(path(tool) + ".behaviour"_L1, text);
}

void FakeTools::useRealTool(const QString &tool)
{
    remove(tool);
    require(QFile::link(realTool(tool), path(tool)), path(tool));
}

void FakeTools::confine()
{
    m_unconfined.reset();
}

QString FakeTools::realTool(const QString &tool)
{
    return tool == "sniffer"_L1 ? QStringLiteral(TESSALY_REAL_SNIFFER) : QStringLiteral(TESSALY_REAL_CREATOR);
}

void FakeTools::useFake(const QString &tool)
{
    remove(tool);
    require(QFile::link(QStringLiteral(TESSALY_FAKE_TOOL), path(tool)), path(tool));
}

void FakeTools::remove(const QString &tool)
{
    const QFileInfo entry(path(tool));
    if (entry.isDir() && !entry.isSymLink())
        require(QDir().rmdir(path(tool)), path(tool));
    else
        QFile::remove(path(tool)); // nothing there is as good
}

void FakeTools::replaceByFolder(const QString &tool)
{
    remove(tool);
    require(QDir().mkdir(path(tool)), path(tool));
}

void FakeTools::replaceByPlainFile(const QString &tool, const QByteArray &contents)
{
    remove(tool);
    writeFile(path(tool), contents);
}

void FakeTools::replaceByBrokenLink(const QString &tool)
{
    remove(tool);
    require(QFile::link(m_resources.filePath(u"nothing"_s), path(tool)), path(tool));
}

QList<QStringList> FakeTools::calls(const QString &tool) const
{
    QList<QByteArray> texts = readIfThere(path(tool) + ".calls"_L1).split('\0');
    texts.removeLast(); // what stands behind the last NUL
    QList<QStringList> calls;
    while (!texts.isEmpty()) {
        const qsizetype count = texts.takeFirst().toLongLong();
        require(count <= texts.size(), u"a call was noted in part"_s);
        QStringList arguments;
        for (qsizetype i = 0; i < count; ++i)
            arguments += QString::fromUtf8(texts.takeFirst());
        calls += arguments;
    }
    return calls;
}

void FakeTools::forgetCalls(const QString &tool)
{
    QFile::remove(path(tool) + ".calls"_L1);
    QFile::remove(path(tool) + ".pids"_L1);
}

QList<qint64> FakeTools::runningProcesses(const QString &tool) const
{
    QList<qint64> running;
    for (const QByteArray &line : readIfThere(path(tool) + ".pids"_L1).split('\n')) {
        const qint64 process = line.toLongLong();
        if (process > 0 && exists(process)) running += process;
    }
    return running;
}

} // namespace tessaly::test
