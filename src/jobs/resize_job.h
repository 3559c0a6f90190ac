// One resize, from the facts about the input and a target to its end. Window and command line run the same.
#pragma once

#include "jobs/converter_text.h"
#include "jobs/job_end.h"

#include <chrono>
#include <functional>
#include <memory>

namespace tessaly {

// convert() runs the converter, end() judges what it left and clears up; run() is both. To be run once.
class ResizeJob
{
public:
    // How long a converter that was asked to end may take before it is killed: after a cancel, when what it
    // wrote is removed anyway, and when the program itself ends.
    static constexpr std::chrono::milliseconds cancelLimit = std::chrono::seconds(2);
    static constexpr std::chrono::milliseconds programEndLimit = std::chrono::seconds(3);

    // How far the converter has come; called on the thread of convert().
    struct Progress
    {
        std::function<void(double percent)> percent; // as from percentOfChunk()
        // Of the new video, for an input whose duration is not known.
        std::function<void(double seconds)> converted;
        std::function<void()> tick; // several times a second, also when nothing is heard
    };

    // The input has a path. The arguments are the converter's; by default those for the target.
    ResizeJob(std::shared_ptr<const FileProbe> input, ResizeTarget target);
    ResizeJob(std::shared_ptr<const FileProbe> input, ResizeTarget target, QStringList arguments);

    const ResizeTarget &target() const { return m_target; }

    // Runs the converter and waits for its end on the calling thread, which may be any.
    void convert(const Progress &progress = {});

    // How the job came out, when convert() is over or was never called; the output is the target, probed
    // since. What a cancelled or failed job left is removed. To be called once.
    [[nodiscard]] JobEnd end(const FileProbe &output);

    // All of it, on the calling thread.
    [[nodiscard]] JobEnd run(const Progress &progress = {});

    // The job comes to nothing, whether the converter has not started yet, runs, or has ended. Any thread,
    // also from a signal handler, at any time of this object's life.
    void cancel(std::chrono::milliseconds limit = cancelLimit) { m_converter.requestStop(limit); }

    // True from the construction on until end(). On the thread of end().
    bool isUnderWay() const { return !m_hasEnded; }

private:
    void handleConverterOutput(const QByteArray &chunk, const Progress &progress);
    std::optional<QString> clearUp() const;

    std::shared_ptr<const FileProbe> m_input;
    ResizeTarget m_target;
    QStringList m_arguments;
    ChildProcess m_converter;
    ConverterText m_text;
    std::optional<OutputGuard> m_guard; // from the converter's start on
    ProcessOutcome m_outcome;
    bool m_hasEnded = false;
};

} // namespace tessaly
