// The facts about one media file, as the prober reports them.
#pragma once

#include "json/json.h"

#include <QString>
#include <QUrl>

#include <chrono>
#include <map>
#include <optional>
#include <vector>

namespace tessaly {

// A prober that has not ended after this time is killed: it waits for ever for a pipe.
inline constexpr std::chrono::milliseconds proberTimeLimit = std::chrono::seconds(30);

// The longest report that is read, in bytes. A stream takes some kilobytes of it. What is parsed may take up
// to 65 times as much memory as its text.
inline constexpr qint64 reportSizeLimit = 16LL * 1024 * 1024;

// A report of more streams is not read further.
inline constexpr std::size_t streamCountLimit = 10'000;

// One probed file. Probing happens in the constructor, on the calling thread; the object is never refreshed
// afterwards. Probing never fails: every problem ends in a record whose flags say so, and is printed.
class FileProbe
{
public:
    // All fields at their initial values; nothing is run.
    FileProbe() = default;

    // Runs the prober on the file and reads its report. The path is passed on exactly as given.
    explicit FileProbe(const QString &path, std::chrono::milliseconds timeLimit = proberTimeLimit);

    // The same from what the prober wrote about the file, any bytes; nothing is run.
    static FileProbe fromReport(const QString &path, const QByteArray &report);

    JSON jsonDictionary;    // the whole report; null when there was none that could be read
    bool hasErrors = false; // the report has an "error" member; gates nothing here
    // At least one stream, and not called .txt. When false, the fields below keep their initial values, but
    // numberOfStreams and those of the file itself.
    bool isValidMediaFile = false;
    bool isEncrypted = false; // a video stream without a codec name
    qint64 numberOfStreams = 0;
    bool hasVideoTrack = false; // moving pictures; a cover picture does not count
    bool hasAudioTrack = false;
    bool hasSubtitleTrack = false; // a QuickTime "text" track (chapters) does not count
    bool hasAudioTrackWhichHasMoreThanTwoChannels = false;
    double duration = 0;               // seconds, of the container; 0 when unknown
    qint64 bitRate = 0;                // bits per second, of the container; 0 when unknown
    std::optional<qint64> videoWidth;  // pixels, as displayed after a quarter turn
    std::optional<qint64> videoHeight; // pixels, as displayed after a quarter turn
    std::optional<double> videoRatio;  // width over height; not finite when the height is 0
    qint64 tagRotateValue = 0;         // degrees clockwise

    // One record per stream: trackType, trackCodec, trackID, trackSpecialInfo, trackPresentInfile,
    // trackDuration (seconds), trackDurationHuman, trackLanguage, trackDictionary (the stream's own object).
    std::vector<Dictionary> tracksInfo;
    // Twelve entries with "key" (the label) and "value".
    std::vector<std::map<QString, QString>> metadata;

    std::optional<quint64> fileSize; // bytes
    std::optional<QString> fileSizeHuman;
    std::optional<QString> fileFullPath; // exactly as given
    std::optional<QUrl> fileFullURL;     // absolute

    // A sentence to show when the prober could not be started or had to be stopped, or when its report is
    // beyond the limits, so that nothing is known about the file; absent in all other cases.
    std::optional<QString> proberFailure;

private:
    void recordFile(const QString &path);
    void recordFailure(const QString &sentence);
    std::optional<QByteArray> runProber(const QString &path, std::chrono::milliseconds timeLimit);
    void readReport(const QByteArray &report);
    bool parseReport(const QByteArray &report);
    bool judgeValidity();
    void readStreams();
    void readContainer();
};

} // namespace tessaly
