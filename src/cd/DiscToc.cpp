#include "cd/DiscToc.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "core/ByteCursor.h"

namespace tavlo {

namespace {
constexpr int mostTracks = 99;

// Bits of the byte of address kind and control.
constexpr unsigned hasPosition = 16, isData = 4;

struct Descriptor {
    unsigned control = 0;
    int number = 0;
    int start = 0;
};

std::optional<Descriptor> takeDescriptor(ByteCursor& cursor) {
    constexpr std::size_t size = 8;
    const auto bytes = cursor.take(size);
    if (!bytes) return std::nullopt;
    const Bytes b = *bytes;
    return Descriptor{b[1], b[2], frameAddress(b[5], b[6], b[7])};
}

int digitSum(int number) {
    int sum = 0;
    for (; number > 0; number /= 10) sum += number % 10;
    return sum;
}
}  // namespace

CdCommand readTocCommand(TocFormat format, std::size_t allocation) {
    constexpr std::uint8_t readToc = 0x43;
    constexpr std::uint8_t asMsf = 0x02;
    CdCommand command{readToc, asMsf, static_cast<std::uint8_t>(format)};
    command[7] = static_cast<std::uint8_t>(allocation >> 8U);
    command[8] = static_cast<std::uint8_t>(allocation & 0xFFU);
    return command;
}

std::optional<DiscToc> parseToc(Bytes answer) {
    constexpr int leadOutNumber = 0xAA;
    ByteCursor cursor(answer);
    const auto size = cursor.bigEndian(2);  // of what follows
    const auto first = cursor.u8();
    const auto last = cursor.u8();
    if (!last || *size < 2 || *first < 1 || *last < *first || *last > mostTracks) {
        return std::nullopt;
    }
    cursor = ByteCursor(cursor.rest().first(std::min<std::size_t>(cursor.left(), *size - 2U)));
    DiscToc toc;
    bool isPositioned = false;
    for (int number = *first; number <= *last + 1; ++number) {
        const bool isLeadOut = number > *last;
        const auto descriptor = takeDescriptor(cursor);
        const int wanted = isLeadOut ? leadOutNumber : number;
        if (!descriptor || descriptor->number != wanted) return std::nullopt;
        isPositioned = isPositioned || (descriptor->control & hasPosition) != 0;
        if (!toc.tracks.empty()) {
            DiscTrack& before = toc.tracks.back();
            before.length = descriptor->start - before.start;
            if (before.length <= 0) return std::nullopt;
        }
        if (isLeadOut) {
            toc.leadOut = descriptor->start;
        } else {
            toc.tracks.push_back(
                {number, descriptor->start, 0, (descriptor->control & isData) == 0});
        }
    }
    for (DiscTrack& track : toc.tracks) track.isAudio = track.isAudio && isPositioned;
    toc.takeGapOff();
    return toc;
}

// Where a session of data follows the music, what lies between the two is no sound: lead-out,
// lead-in and the pause in front of the track.
void DiscToc::takeGapOff() {
    constexpr int gap = 11400;  // frames
    if (tracks.size() < 2 || tracks.back().isAudio) return;
    DiscTrack& before = tracks[tracks.size() - 2];
    if (before.isAudio && before.length > gap) before.length -= gap;
}

std::string DiscToc::text() const {
    if (!std::ranges::any_of(tracks, &DiscTrack::isAudio)) return {};
    std::string text;
    for (const DiscTrack& track : tracks) text += std::to_string(track.start) + " ";
    return text + std::to_string(leadOut);
}

// How the first CDDB servers defined it: digits of the starts, playing time, number of tracks.
std::string DiscToc::discId() const {
    if (text().empty()) return {};
    unsigned sum = 0;
    for (const DiscTrack& track : tracks) {
        sum += static_cast<unsigned>(digitSum(track.start / framesPerSecond));
    }
    const auto seconds =
        static_cast<unsigned>(leadOut / framesPerSecond - tracks.front().start / framesPerSecond);
    std::array<char, 16> id{};
    std::snprintf(
        id.data(), id.size(), "%08x",
        (sum % 255) << 24U | (seconds & 0xFFFFU) << 8U | static_cast<unsigned>(tracks.size()));
    return id.data();
}

}  // namespace tavlo
