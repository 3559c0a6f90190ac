// What the list of streams in a prober's report says about the file as a whole. Pure functions.
#pragma once

#include "json/json.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tessaly {

// The first stream of moving pictures.
struct MainVideo
{
    std::int64_t width;  // pixels, as displayed after a quarter turn; 0 when the report has none
    std::int64_t height; // pixels, likewise
    std::int64_t rotate; // degrees clockwise; 0 without a tag
};

// Whether the stream's "rotate" tag says a quarter turn, so that width and height change places. Only the
// texts "90" and "270" do; a number does not.
bool isTurnedByAQuarter(const JSON &stream);

// A cover picture or other still, which has no frame rate.
bool isStillPicture(const JSON &stream);

// A subtitle stream that people would call one: not a QuickTime "text" track, and with a known codec.
bool isRealSubtitle(const JSON &stream);

// The mark of an encrypted file: a video stream without a codec name.
bool hasUnnamedVideoCodec(const std::vector<JSON> &streams);

// The first stream of moving pictures, in the list itself; null when there is none.
const JSON *mainVideoStream(const std::vector<JSON> &streams);

// That one, or else the first picture stream without a frame rate, unless it is the cover of sound.
const JSON *pictureStream(const std::vector<JSON> &streams);

// Whether a picture stream is known to hold a single one: by its count, by its length and frame rate, or as a
// cover.
bool holdsOnePicture(const JSON &stream);

// A video all of whose picture streams come without a frame rate: none of them is its main video.
bool isVideoWithoutRate(const std::vector<JSON> &streams);

// The facts of the main video stream; nothing when there is none.
std::optional<MainVideo> mainVideo(const std::vector<JSON> &streams);

bool hasAudio(const std::vector<JSON> &streams);

// Exactly two channels do not count; a channel count that is no number reads as 0.
bool hasMoreThanTwoChannels(const std::vector<JSON> &streams);

bool hasSubtitles(const std::vector<JSON> &streams);

} // namespace tessaly
