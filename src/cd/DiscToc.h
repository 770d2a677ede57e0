#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/CdDrive.h"
#include "platform/FileCalls.h"

namespace tavlo {

/// Bytes that are asked for: a header of 4, and 100 descriptors of 8 or 256 packs of 18.
inline constexpr std::size_t tocSize = 804, cdTextSize = 4612;

/// READ TOC (SCSI MMC-3, 5.21): addresses as minutes, seconds and frames.
enum class TocFormat : std::uint8_t { Toc = 0, CdText = 5 };
CdCommand readTocCommand(TocFormat format, std::size_t allocation);

inline constexpr int framesPerSecond = 75, secondsPerMinute = 60;
constexpr int frameAddress(int minutes, int seconds, int frames) {
    return (minutes * secondsPerMinute + seconds) * framesPerSecond + frames;
}

struct DiscTrack {
    int number = 0;
    int start = 0;   ///< frames; the first track of a usual disc starts at 150
    int length = 0;  ///< frames, up to the next track, the end of its session or the lead-out
    bool isAudio = true;
};

/// The table of contents of a disc.
struct DiscToc {
    std::vector<DiscTrack> tracks;
    int leadOut = 0;  ///< frames

    /// "150 18432 36107 201850": the start of every track and of the lead-out; empty where no track
    /// is audio.
    [[nodiscard]] std::string text() const;
    /// The number by which CDDB servers know the disc, in hexadecimal; empty without a text.
    [[nodiscard]] std::string discId() const;

    /// Corrects the length of the last audio track in front of a session of data.
    void takeGapOff();
};

/// Takes the answer to READ TOC apart; nothing where it holds no tracks, more than 99, not all
/// of those that it speaks of, or these in another order.
std::optional<DiscToc> parseToc(Bytes answer);

}  // namespace tavlo
