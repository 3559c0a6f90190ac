#include "cli/resize_report.h"

#include "cli/resize_json.h"
#include "cli/streams.h"
#include "cli/terminal_text.h"
#include "jobs/completion_text.h"
#include "jobs/output_name.h"
#include "platform/printing.h"

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

QString sizeText(const FileProbe &probe)
{
    return frameSizeText({probe.videoWidth.value_or(0), probe.videoHeight.value_or(0)}) + u" ("_s +
           probe.fileSizeHuman.value_or(u"Unknown File Size"_s) + u')';
}

// One of many in one line, one alone in three.
QString doneText(const QString &written, const JobDone &done, const FileProbe &input, bool isOfMany)
{
    if (done.uncheckedBecause) return u"Wrote "_s + written + u'\n';
    if (isOfMany)
        return u"Wrote "_s + written + u": "_s + sizeText(done.output) + u", from "_s + sizeText(input) +
               u'\n';
    return completionText(input, done.output, done.output) + u"\nWrote "_s + written + u'\n';
}

} // namespace

ResizeReport::ResizeReport(const ResizeCommand &command, bool isOfMany)
    : m_command(command), m_isOfMany(isOfMany)
{}

void ResizeReport::tellMade(const NamedFile &folder)
{
    report(u"Made the folder "_s + terminalText(folder.shown) + u'\n');
}

void ResizeReport::tell(const ResizeFile &file, const FileEnd &end)
{
    for (const QString &sentence : remarksOf(end))
        complainOf(file, sentence);
    std::visit([&](const auto &outcome) { tellOutcome(file, outcome, end); }, end.outcome);
    if (m_command.json) writeToOutput(resizeJson(file, end) + '\n');
}

void ResizeReport::tellOutcome(const ResizeFile &file, const JobDone &done, const FileEnd &end)
{
    ++m_done;
    const QString written = terminalText(withMp4Extension(file.output.shown));
    report(doneText(written, done, *end.input, m_isOfMany));
}

void ResizeReport::tellOutcome(const ResizeFile &file, const JobFailed &failed, const FileEnd &)
{
    ++m_failed;
    if (m_command.verbose && !failed.details.isEmpty()) print(failed.details);
    complainOf(file, resizeFailedMessage() + u' ' + failed.sentence);
}

void ResizeReport::tellOutcome(const ResizeFile &file, const JobCancelled &cancelled, const FileEnd &)
{
    ++m_cancelled;
    if (cancelled.leftover) complainOf(file, *cancelled.leftover);
    complainOf(file, u"Cancelled."_s);
}

void ResizeReport::tellOutcome(const ResizeFile &file, const Refused &refused, const FileEnd &)
{
    ++m_failed;
    complainOf(file, refused.sentence);
}

void ResizeReport::tellOutcome(const ResizeFile &file, const Skipped &skipped, const FileEnd &)
{
    ++m_skipped;
    const bool hasMore = m_command.verbose && !skipped.details.isEmpty();
    const QString more = hasMore ? u" ("_s + skipped.details + u')' : QString();
    report(terminalText(u"Skipped "_s + file.input.shown + u": "_s + skipped.sentence + more) + u'\n');
}

void ResizeReport::tellOutcome(const ResizeFile &file, const NotBegun &, const FileEnd &)
{
    ++m_notBegun;
    if (m_isOfMany) report(terminalText(u"Not begun: "_s + file.input.shown) + u'\n');
}

// Among many each sentence needs the file's name, where it does not begin with it anyway.
void ResizeReport::complainOf(const ResizeFile &file, const QString &sentence) const
{
    const bool isNamed = sentence.startsWith(file.input.path.value_or(file.input.shown) + u": "_s);
    complain(m_isOfMany && !isNamed ? file.input.shown + u": "_s + sentence : sentence);
}

void ResizeReport::report(const QString &text)
{
    if (m_command.quiet) return;
    if (m_command.json) {
        write(stderr, text.toUtf8());
    } else {
        writeToOutput(text.toUtf8());
    }
}

void ResizeReport::writeToOutput(const QByteArray &text)
{
    if (m_outputIsWhole) m_outputIsWhole = writeOutput(text);
}

void ResizeReport::summary()
{
    if (!m_isOfMany) return;
    QString text = u"%1 resized"_s.arg(m_done);
    for (const auto &[count, word] :
         {std::pair(m_failed, u"failed"_s), std::pair(m_skipped, u"skipped"_s),
          std::pair(m_cancelled, u"cancelled"_s), std::pair(m_notBegun, u"not begun"_s)}) {
        if (count > 0) text += u", %1 "_s.arg(count) + word;
    }
    report(text + u'\n');
}

void ResizeReport::refuse(const std::vector<ResizeFile> &files, const QStringList &sentences)
{
    m_wasRefused = true;
    for (const QString &sentence : sentences)
        complain(sentence);
    if (!m_command.json) return;
    for (const ResizeFile &file : files)
        writeToOutput(resizeJson(file, {Refused{sentences.join(u' ')}}) + '\n');
}

ExitCode ResizeReport::exitCode() const
{
    if (m_cancelled + m_notBegun > 0) return exitCancelled;
    return m_wasRefused || m_failed > 0 || !m_outputIsWhole ? exitFailed : exitDone;
}

} // namespace tessaly
