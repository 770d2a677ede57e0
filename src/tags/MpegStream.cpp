#include "tags/MpegStream.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

#include "core/ByteCursor.h"
#include "tags/ID3v2.h"
#include "tags/MPEGHeader.h"

namespace tavlo {

namespace {
constexpr std::uint64_t searchSpan = 40960;  // bytes in which a stream has to begin
constexpr std::uint64_t id3v1Size = 128;     // never searched at the file's end
constexpr std::size_t headerSize = 4;
// A stream usually begins at once; later steps are wide enough to check the next frame as well.
constexpr std::size_t firstStep = 512, laterStep = 4096, nextFrameSpan = 4096;
constexpr std::size_t markerSize = 4;
constexpr std::size_t markerSpan = 4096;  // bytes from the first frame that may hold a marker
constexpr std::size_t usualSpan = 192;    // bytes that hold a marker in its place and its fields
constexpr std::size_t encoderOffset = 120, encoderSize = 16;
constexpr std::uint64_t tailSpan = 4096, tailSize = 3968;

// Encoders do not agree whether the frame with the counts is one of the bytes that they count.
constexpr std::uint64_t countSlack = 2048;

// What a full-rate frame of 1152 samples is taken to last at 44100 Hz, times 44.1.
constexpr double frameSamples = 26.125 * 44100 / 1000;

struct Frame {
    std::uint64_t offset = 0;
    MPEGHeader header;
};

bool isSameStream(const MPEGHeader& a, const MPEGHeader& b) {
    return a.Version == b.Version && a.Layer == b.Layer && a.SampleRate == b.SampleRate;
}

bool isXingMarker(std::string_view text) {
    return text.starts_with("Xing") || text.starts_with("Info");
}

// Where the format puts the marker: behind the header and the side information of layer III.
std::size_t markerPlace(const MPEGHeader& header) {
    const bool mono = header.ChannelMode == 3;
    if (header.Version == 1) return headerSize + (mono ? 17 : 32);
    return headerSize + (mono ? 9 : 17);
}

bool hasMarkerInPlace(const MPEGHeader& header, std::string_view stream) {
    const std::size_t place = markerPlace(header);
    return stream.size() > place && isXingMarker(stream.substr(place, markerSize));
}

class FrameSearch {
 public:
    FrameSearch(File& file, std::uint64_t start)
        : file_(file),
          start_(start),
          end_(std::min(start + searchSpan, file.size() - std::min(file.size(), id3v1Size))) {}

    // The first candidate that the next frame confirms, else the first valid one.
    std::optional<Frame> find() {
        std::optional<Frame> found;
        std::uint64_t from = start_;
        for (std::size_t step = firstStep; from < end_ && !found; step = laterStep) {
            found = findIn(from, std::min<std::uint64_t>(step, end_ - from),
                           step == firstStep ? headerSize : nextFrameSpan);
            from += step;
        }
        return found ? found : unconfirmed_;
    }

 private:
    std::optional<Frame> findIn(std::uint64_t from, std::uint64_t count, std::size_t more) {
        for (std::size_t at = 0; at < count; ++at) {
            // Looked up anew each time: a check of the next frame may move the window.
            const std::string_view text =
                textOf(file_.view(from, static_cast<std::size_t>(count) + more));
            at = text.find('\xFF', at);
            if (at >= count) return std::nullopt;
            if (const auto frame = parse(from + at, text.substr(at, headerSize))) {
                if (isConfirmed(*frame)) return frame;
                if (!unconfirmed_) unconfirmed_ = frame;
            }
        }
        return std::nullopt;
    }

    static std::optional<Frame> parse(std::uint64_t offset, std::string_view bytes) {
        Frame frame{offset, {}};
        // The reserved sampling index passes as a header, yet nothing could be played from it.
        if (!frame.header.ParseHeader(bytes) || frame.header.SampleRate == 0) return std::nullopt;
        return frame;
    }

    bool isConfirmed(const Frame& frame) {
        const std::string_view stream = textOf(file_.view(frame.offset, usualSpan));
        if (hasMarkerInPlace(frame.header, stream)) return true;
        const std::uint32_t size = frame.header.frameSize();
        if (size == 0) return false;
        const auto next = parse(0, textOf(file_.view(frame.offset + size, headerSize)));
        return next && isSameStream(next->header, frame.header);
    }

    File& file_;
    std::uint64_t start_, end_;
    std::optional<Frame> unconfirmed_;
};

std::optional<Frame> frameAt(File& file, std::uint64_t offset) {
    Frame frame{offset, {}};
    const bool isFrame = frame.header.ParseHeader(textOf(file.view(offset, headerSize))) &&
                         frame.header.SampleRate != 0;
    return isFrame ? std::optional(frame) : std::nullopt;
}

// What a VBR header tells; 0 where it does not.
struct StreamCounts {
    bool isVbr = false;
    std::uint32_t frames = 0;
    std::uint32_t bytes = 0;
};

// Xing header behind its marker: flags, then the fields that the flags announce.
StreamCounts parseXing(Bytes bytes, bool isVbr) {
    constexpr std::uint32_t hasFrames = 1;
    constexpr std::uint32_t hasBytes = 2;
    StreamCounts counts{isVbr, 0, 0};
    ByteCursor cursor(bytes);
    const std::uint32_t flags = cursor.bigEndian(4).value_or(0);
    if ((flags & hasFrames) != 0) counts.frames = cursor.bigEndian(4).value_or(0);
    if ((flags & hasBytes) != 0) counts.bytes = cursor.bigEndian(4).value_or(0);
    return counts;
}

// VBRI header behind its marker: version, delay and quality (2 bytes each), bytes, frames.
StreamCounts parseVbri(Bytes bytes) {
    StreamCounts counts{true, 0, 0};
    ByteCursor cursor(bytes);
    cursor.take(6);
    counts.bytes = cursor.bigEndian(4).value_or(0);
    counts.frames = cursor.bigEndian(4).value_or(0);
    return counts;
}

bool isPrintable(char c) {
    return c >= 0x20 && c < 0x7F;
}

// The first printable piece of an encoder's name; what the encoder filled up with "U" goes.
std::string cleanEncoder(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const bool leading = text.empty() && c == ' ';
        if (c == '\0' || leading || (text.empty() && !isPrintable(c))) continue;
        if (!isPrintable(c)) break;
        text += c;
    }
    text.resize(std::min(text.find("UU"), text.size()));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

// A "LAME" text that begins in the first `span` bytes, up to its NUL.
std::string findLame(std::string_view bytes, std::size_t span) {
    const std::size_t at = bytes.find("LAME");
    if (at >= span) return {};  // npos as well
    const std::string_view text = bytes.substr(at, encoderSize);
    return cleanEncoder(text.substr(0, text.find('\0')));
}

// Where a Xing or "Info" marker begins: in its place, else the first "Xing", else the first "Info".
std::size_t findMarker(const MPEGHeader& header, std::string_view stream) {
    if (hasMarkerInPlace(header, stream)) return markerPlace(header);
    const std::size_t at = stream.find("Xing");
    return at != std::string_view::npos ? at : stream.find("Info");
}

struct VbrHeader {
    StreamCounts counts;
    std::string encoder;
};

// Looks for a VBR header in the first `span` bytes from the first frame.
VbrHeader readVbrHeader(File& file, const Frame& first, std::size_t span) {
    constexpr std::size_t vbriPlace = 36;
    const Bytes stream = file.view(first.offset, span);
    const std::string_view text = textOf(stream);
    const std::size_t at = findMarker(first.header, text);
    if (at != std::string_view::npos) {
        const bool isVbr = text.substr(at).starts_with("Xing");
        const Bytes marker = file.view(first.offset + at, encoderOffset + encoderSize);
        const std::string_view encoder =
            textOf(marker).substr(std::min(encoderOffset, marker.size()));
        return {parseXing(marker.subspan(std::min(markerSize, marker.size())), isVbr),
                cleanEncoder(encoder)};
    }
    if (text.size() > vbriPlace && text.substr(vbriPlace).starts_with("VBRI")) {
        return {parseVbri(stream.subspan(vbriPlace + markerSize)), {}};
    }
    return {};
}

// A "LAME" text in the first frame or the 4096 bytes that follow it.
std::string streamEncoder(File& file, const Frame& first) {
    const std::size_t span = first.header.frameSize() + markerSpan;
    return findLame(textOf(file.view(first.offset, span + encoderSize)), span);
}

std::string tailEncoder(File& file) {
    const std::uint64_t from = file.size() - std::min(file.size(), tailSpan);
    return findLame(textOf(file.view(from, tailSize)), tailSize);
}

// Samples that a frame is taken to play: half and a third of them where the frame is shorter.
double playedSamples(const MPEGHeader& header) {
    constexpr int fullFrame = 1152;
    return frameSamples * header.samplesPerFrame() / fullFrame;
}

std::uint32_t estimateFrames(const MPEGHeader& header, std::uint64_t bytes) {
    if (header.Bitrate == 0) return 0;
    const double frameBytes =
        header.samplesPerFrame() / 8.0 * header.Bitrate * 1000 / header.SampleRate;
    const double frames = std::round(static_cast<double>(bytes) / frameBytes);
    return static_cast<std::uint32_t>(std::min(frames, 4294967295.0));
}

// Frames of the lowest bit rate are the smallest that a stream can have; of a free one nothing is
// known.
bool canHold(const MPEGHeader& header, std::uint64_t bytes, std::uint64_t frames) {
    if (header.Bitrate == 0) return true;
    MPEGHeader smallest = header;
    smallest.Bitrate = header.lowestBitrate();
    smallest.Padding = false;
    return frames * smallest.frameSize() <= bytes + countSlack;
}

void fillLengths(ID3tag& record, const Frame& first, const StreamCounts& counts,
                 std::uint64_t audioBytes) {
    const MPEGHeader& header = first.header;
    record.VBR = counts.isVbr;
    record.Frames = counts.frames != 0 ? counts.frames : estimateFrames(header, audioBytes);
    const double seconds = record.Frames * playedSamples(header) / header.SampleRate;
    record.Seconds = static_cast<std::int32_t>(std::min(seconds, 2147483647.0));
    if (!counts.isVbr || counts.frames == 0) return;
    const auto bytes = static_cast<double>(counts.bytes != 0 ? counts.bytes : audioBytes);
    record.Bitrate = static_cast<int>(std::lround(std::min(bytes * 8 / seconds / 1000, 1e6)));
}
}  // namespace

std::optional<std::int32_t> countMpegSeconds(File& file) {
    auto frame = FrameSearch(file, ID3v2TagEnd(file)).find();
    double seconds = 0;
    while (frame) {
        const std::uint32_t size = frame->header.frameSize();
        if (size == 0) return std::nullopt;
        seconds += playedSamples(frame->header) / frame->header.SampleRate;
        const std::uint64_t next = frame->offset + size;
        frame = frameAt(file, next);
        if (!frame && next < file.size()) frame = FrameSearch(file, next).find();
    }
    return static_cast<std::int32_t>(std::min(seconds, 2147483647.0));
}

void readMpegStream(File& file, ID3tag& record, std::uint64_t audioEnd) {
    const std::uint64_t start = record.IsID3v2Present ? record.ID3v2Ext.TagSize : 0;
    const auto first = FrameSearch(file, start).find();
    if (!first) return;
    record.MpegVersion = first->header.Version;
    record.Layer = first->header.Layer;
    record.SampleRate = first->header.SampleRate;
    record.ChannelMode = first->header.ChannelMode;
    record.Channels = record.ChannelMode == 3 ? 1 : 2;
    record.Bitrate = first->header.Bitrate;
    // The search for texts costs a read; it is left out where the marker says everything.
    VbrHeader vbr = readVbrHeader(file, *first, usualSpan);
    if (vbr.encoder.empty()) vbr = readVbrHeader(file, *first, markerSpan);
    const std::uint64_t audioBytes = audioEnd - std::min(audioEnd, first->offset);
    if (!canHold(first->header, audioBytes, vbr.counts.frames)) vbr.counts.frames = 0;
    fillLengths(record, *first, vbr.counts, audioBytes);
    record.TimeIsGuessed = vbr.counts.frames == 0;
    record.StreamFound = vbr.counts.bytes <= audioBytes + countSlack;
    record.Encoder = std::move(vbr.encoder);
    if (record.Encoder.empty()) record.Encoder = streamEncoder(file, *first);
    if (record.Encoder.empty()) record.Encoder = tailEncoder(file);
}

}  // namespace tavlo
